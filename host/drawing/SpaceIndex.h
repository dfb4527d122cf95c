#pragma once

// Finds the rectangles in a part of the plane without looking at all of them.

#include "host/drawing/Geometry.h"

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace flowmere::host::drawing {

class SpaceIndex {
public:
    // `cell` is about the size of what is put in.
    explicit SpaceIndex(double cell) : m_cell(std::max(cell, 1.0)) {}

    // For about so many rectangles that lie within the bounds, but for a few.
    SpaceIndex(double cell, Rect const& bounds, std::size_t count) : SpaceIndex(cell) {
        Cells const cells = cellsOf(bounds);
        if (cells.count() > 16.0 * static_cast<double>(count) + 4096)
            return;
        m_dense = cells;
        m_columns = cells.right - cells.left + 1;
        m_grid.resize(static_cast<std::size_t>(m_columns * (cells.bottom - cells.top + 1)));
    }

    // The entries are numbered from 0 as they are added.
    std::size_t add(Rect const& rect) {
        auto const number = static_cast<std::uint32_t>(m_rects.size());
        m_rects.push_back(rect);
        m_stamps.push_back(0);
        Cells const cells = cellsOf(rect);
        if (m_grid.empty() && cells.count() > kMostCells) {
            m_large.push_back(number);
            return number;
        }
        for (std::int64_t row = cells.top; row <= cells.bottom; ++row)
            for (std::int64_t column = cells.left; column <= cells.right; ++column)
                (m_grid.empty() ? m_cells[keyOf(column, row)] : m_grid[placeOf(column, row)]).push_back(number);
        return number;
    }

    Rect const& operator[](std::size_t number) const { return m_rects[number]; }
    std::size_t size() const { return m_rects.size(); }

    // Calls see(number) once for each rectangle that touches the area, until it gives false.
    template <typename See>
    void visit(Rect const& area, See see) const {
        if (m_rects.empty())
            return;
        ++m_stamp;
        auto const look = [&](std::uint32_t number) {
            if (m_stamps[number] == m_stamp)
                return true;
            m_stamps[number] = m_stamp;
            Rect const& rect = m_rects[number];
            bool const touches = rect.left <= area.right && area.left <= rect.right && rect.top <= area.bottom &&
                                 area.top <= rect.bottom;
            return !touches || see(static_cast<std::size_t>(number));
        };
        for (std::uint32_t const number : m_large)
            if (!look(number))
                return;
        Cells const cells = cellsOf(area);
        if (cells.count() > static_cast<double>(m_rects.size())) {
            for (std::uint32_t number = 0; number < m_rects.size(); ++number)
                if (!look(number))
                    return;
            return;
        }
        for (std::int64_t row = cells.top; row <= cells.bottom; ++row)
            for (std::int64_t column = cells.left; column <= cells.right; ++column)
                for (std::uint32_t const number : entriesOf(column, row))
                    if (!look(number))
                        return;
    }

    // Whether a rectangle overlaps the area by more than the depth.
    bool overlaps(Rect const& area, double depth = 0) const {
        bool found = false;
        visit(area, [&](std::size_t number) {
            found = m_rects[number].overlaps(area, depth);
            return !found;
        });
        return found;
    }

private:
    using Entries = std::vector<std::uint32_t>;

    // A rectangle of more cells goes to a list that every look-up passes through.
    static constexpr double kMostCells = 4096;

    struct Cells {
        std::int64_t left = 0;
        std::int64_t top = 0;
        std::int64_t right = 0;
        std::int64_t bottom = 0;
        double count() const { return static_cast<double>(right - left + 1) * static_cast<double>(bottom - top + 1); }
    };

    // What lies outside of the bounds counts to the cells at their border.
    Cells cellsOf(Rect const& rect) const {
        auto const cell = [&](double value) {
            return static_cast<std::int64_t>(std::floor(value / m_cell));
        };
        Cells const cells{cell(rect.left), cell(rect.top), cell(rect.right), cell(rect.bottom)};
        if (m_grid.empty())
            return cells;
        auto const across = [&](std::int64_t column) {
            return std::clamp(column, m_dense.left, m_dense.right);
        };
        auto const down = [&](std::int64_t row) {
            return std::clamp(row, m_dense.top, m_dense.bottom);
        };
        return {across(cells.left), down(cells.top), across(cells.right), down(cells.bottom)};
    }

    Entries const& entriesOf(std::int64_t column, std::int64_t row) const {
        static Entries const kEmpty;
        if (!m_grid.empty())
            return m_grid[placeOf(column, row)];
        auto const cell = m_cells.find(keyOf(column, row));
        return cell == m_cells.end() ? kEmpty : cell->second;
    }

    std::size_t placeOf(std::int64_t column, std::int64_t row) const {
        return static_cast<std::size_t>((row - m_dense.top) * m_columns + column - m_dense.left);
    }

    static std::uint64_t keyOf(std::int64_t column, std::int64_t row) {
        return (static_cast<std::uint64_t>(column) << 32U) ^ (static_cast<std::uint64_t>(row) & 0xFFFFFFFFU);
    }

    // Neighbouring cells must not fall into a row of neighbouring buckets that all end in the same ones.
    struct Hash {
        std::size_t operator()(std::uint64_t key) const {
            return static_cast<std::size_t>((key ^ (key >> 32U) * 0x9E3779B97F4A7C15U) * 0xBF58476D1CE4E5B9U >> 7U);
        }
    };

    double m_cell;
    std::vector<Rect> m_rects;
    std::vector<std::uint32_t> m_large;
    // The cells: one for each place within the bounds, or those that hold something.
    Cells m_dense;
    std::int64_t m_columns = 0;
    std::vector<Entries> m_grid;
    std::unordered_map<std::uint64_t, Entries, Hash> m_cells;
    mutable std::vector<std::uint64_t> m_stamps;
    mutable std::uint64_t m_stamp = 0;
};

} // namespace flowmere::host::drawing
