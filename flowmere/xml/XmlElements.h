#pragma once

#include "flowmere/foundation/TuString.h"
#include "flowmere/xml/XmlForward.h"
#include "flowmere/xml/XmlText.h"

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

// Elements and attributes by names that stand in the program: what the readers and writers use inside, where each
// conversion of a name and each heap allocation would count a hundred times per block.
namespace flowmere {

// The element's tag; empty for null.
std::u16string_view tagOf(XERCES_CPP_NAMESPACE::DOMElement const* element) noexcept;

// First child element, next element behind one; null at the end. Other nodes are passed over.
XERCES_CPP_NAMESPACE::DOMElement* firstElement(XERCES_CPP_NAMESPACE::DOMNode const* parent) noexcept;
XERCES_CPP_NAMESPACE::DOMElement* nextElement(XERCES_CPP_NAMESPACE::DOMElement const* element) noexcept;

// The value of an attribute, null when it is absent.
XMLCh const* attributeOf(XERCES_CPP_NAMESPACE::DOMElement const* element, XmlName name);

// The names that one element form has, in the order in which the program numbers them.
template <std::size_t N>
class AttributeTable {
public:
    // Names must differ from each other.
    template <typename... Names>
    requires(sizeof...(Names) == N) consteval explicit AttributeTable(Names const&... texts) {
        std::array<std::u16string_view, N> const names{std::u16string_view(texts)...};
        for (std::size_t i = 0; i < N; ++i) {
            std::size_t at = i;
            for (; at > 0 && names[i] < m_names[at - 1]; --at) {
                m_names[at] = m_names[at - 1];
                m_slots[at] = m_slots[at - 1];
            }
            m_names[at] = names[i];
            m_slots[at] = i;
        }
    }

    std::span<std::u16string_view const> names() const noexcept { return m_names; }
    std::span<std::size_t const> slots() const noexcept { return m_slots; }

private:
    std::array<std::u16string_view, N> m_names{}; // sorted
    std::array<std::size_t, N> m_slots{};         // number of the name at the same place
};

template <typename... Names>
AttributeTable(Names const&...) -> AttributeTable<sizeof...(Names)>;

// Fills `values` (one entry for each name, by number) with the texts of the element's attributes in a single sweep;
// entries of absent attributes are null.
void sweepAttributes(XERCES_CPP_NAMESPACE::DOMElement const* element, std::span<std::u16string_view const> names,
                     std::span<std::size_t const> slots, std::span<XMLCh const*> values);

// The values of one element's attributes, taken in one sweep. They point into the document. The getters follow the
// rule of the readers: an absent attribute leaves `out` untouched and gives false.
template <std::size_t N>
class AttributeRow {
public:
    AttributeRow(XERCES_CPP_NAMESPACE::DOMElement const* element, AttributeTable<N> const& table) {
        sweepAttributes(element, table.names(), table.slots(), m_values);
    }

    // The text, null when the attribute is absent.
    XMLCh const* operator[](std::size_t number) const noexcept { return m_values[number]; }
    bool has(std::size_t number) const noexcept { return m_values[number] != nullptr; }
    // The text, empty when the attribute is absent.
    std::u16string_view view(std::size_t number) const noexcept { return xmlView(m_values[number]); }

    bool text(std::size_t number, TuString& out) const {
        if (m_values[number]) {
            assignText(out, xmlView(m_values[number]));
        }
        return has(number);
    }
    bool integer(std::size_t number, int& out) const {
        if (m_values[number]) {
            out = integerOf(xmlView(m_values[number]));
        }
        return has(number);
    }
    bool unsignedInteger(std::size_t number, unsigned int& out) const {
        if (m_values[number]) {
            out = unsignedOf(xmlView(m_values[number]));
        }
        return has(number);
    }
    bool color(std::size_t number, unsigned int& out) const {
        if (m_values[number]) {
            out = colorOf(xmlView(m_values[number]));
        }
        return has(number);
    }
    bool real(std::size_t number, double& out) const {
        if (m_values[number]) {
            out = realOf(xmlView(m_values[number]));
        }
        return has(number);
    }
    bool flag(std::size_t number, bool& out) const {
        return m_values[number] && flagOf(xmlView(m_values[number]), out);
    }

private:
    std::array<XMLCh const*, N> m_values{};
};

// The text and CDATA children of an element joined, or its CDATA sections alone; false, with `out` untouched, without
// such a child.
bool ownText(XERCES_CPP_NAMESPACE::DOMElement const* element, TuString& out);
bool ownCData(XERCES_CPP_NAMESPACE::DOMElement const* element, TuString& out);

// Creates an element as the last child of `parent`; null on failure.
XERCES_CPP_NAMESPACE::DOMElement* appendElement(XERCES_CPP_NAMESPACE::DOMNode* parent, XmlName name) noexcept;

// Set an attribute; false when the node is no element or the document refuses it.
bool setText(XERCES_CPP_NAMESPACE::DOMNode* node, XmlName name, std::wstring_view value) noexcept;
bool setConstant(XERCES_CPP_NAMESPACE::DOMNode* node, XmlName name, XmlName value) noexcept;
bool setInteger(XERCES_CPP_NAMESPACE::DOMNode* node, XmlName name, long long value) noexcept;
bool setReal(XERCES_CPP_NAMESPACE::DOMNode* node, XmlName name, double value) noexcept;
// `hundredths` / 100 with three digits behind the point.
bool setMeasure(XERCES_CPP_NAMESPACE::DOMNode* node, XmlName name, long long hundredths) noexcept;
bool setFlag(XERCES_CPP_NAMESPACE::DOMNode* node, XmlName name, bool value) noexcept;
bool setFlagLetter(XERCES_CPP_NAMESPACE::DOMNode* node, XmlName name, bool value) noexcept;

// Append a text child, a CDATA section.
bool appendText(XERCES_CPP_NAMESPACE::DOMNode* node, std::wstring_view value) noexcept;
bool appendCData(XERCES_CPP_NAMESPACE::DOMNode* node, std::wstring_view value) noexcept;

} // namespace flowmere
