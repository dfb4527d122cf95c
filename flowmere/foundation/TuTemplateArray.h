#pragma once

#include <cstddef>
#include <vector>

// A growing array of value semantics. An index outside the array ends in std::out_of_range.
template <typename T>
class TuTemplateArray {
public:
    // Number of elements; both names give the same.
    int GetSize() const noexcept { return static_cast<int>(m_elements.size()); }
    int GetCount() const noexcept { return GetSize(); }
    bool IsEmpty() const noexcept { return m_elements.empty(); }

    T& GetAt(int index) { return m_elements.at(position(index)); }
    T const& GetAt(int index) const { return m_elements.at(position(index)); }
    T& operator[](int index) { return GetAt(index); }
    T const& operator[](int index) const { return GetAt(index); }

    // Appends a copy and gives its index.
    int Add(T const& element) {
        m_elements.push_back(element);
        return GetSize() - 1;
    }
    // Cuts the array or fills it up with new elements; a negative size acts as 0.
    void SetSize(int size) { m_elements.resize(size > 0 ? static_cast<std::size_t>(size) : 0); }
    void RemoveAll() noexcept { m_elements.clear(); }

    auto begin() noexcept { return m_elements.begin(); }
    auto end() noexcept { return m_elements.end(); }
    auto begin() const noexcept { return m_elements.begin(); }
    auto end() const noexcept { return m_elements.end(); }

private:
    // A negative index turns into one that no array reaches.
    static std::size_t position(int index) noexcept { return static_cast<std::size_t>(index); }

    std::vector<T> m_elements;
};
