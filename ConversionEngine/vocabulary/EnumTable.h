// SPDX-License-Identifier: GPL-3.0-or-later
// The one declaration of an enum of the vocabulary: a row per case, in declared order, with its
// raw value and, where it has one, its display text. rawValue, …FromRawValue and all… read the
// table, so that a case is written down once. Constant data; any thread.
#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <cstddef>
#include <optional>
#include <type_traits>

namespace ConversionEngine {

template <typename Enum, typename Raw>
struct EnumRow
{
    Enum value;
    Raw raw;                  // QStringView for a text, else a number
    QStringView display = {}; // the label a person reads, where it differs from the raw value
};

template <typename Enum, typename Raw, std::size_t count>
class EnumTable
{
public:
    using Row = EnumRow<Enum, Raw>;

    constexpr explicit EnumTable(const std::array<Row, count>& rows)
        : m_rows(rows)
    {
        for (std::size_t index = 0; index < count; ++index)
            m_cases[index] = rows[index].value;
    }

    // Every case, in declared order.
    constexpr const std::array<Enum, count>& allCases() const { return m_cases; }

    // False when a case has two rows: the table is checked with static_assert where it is made.
    constexpr bool hasDistinctCases() const
    {
        for (std::size_t first = 0; first < count; ++first)
            for (std::size_t second = first + 1; second < count; ++second)
                if (m_rows[first].value == m_rows[second].value)
                    return false;
        return true;
    }

    // For enums whose enumerators are their raw values: true when every row says so too.
    constexpr bool rawValuesAreEnumerators() const
    {
        for (const Row& candidate : m_rows)
            if (static_cast<Raw>(candidate.value) != candidate.raw)
                return false;
        return true;
    }

    // The row of `value`; nullptr for a value outside the declared cases (a cast integer).
    constexpr const Row* row(Enum value) const
    {
        for (const Row& candidate : m_rows)
            if (candidate.value == value)
                return &candidate;
        return nullptr;
    }

    // The raw value: a QString for a text, else the number; empty or 0 outside the declared
    // cases, as a switch over the cases would give.
    auto rawValue(Enum value) const
    {
        const Row* found = row(value);
        if constexpr (std::is_same_v<Raw, QStringView>)
            return found ? found->raw.toString() : QString();
        else
            return found ? found->raw : Raw{};
    }

    // Exact lookup: a text matches case-sensitively, a number only when equal.
    template <typename Key>
    std::optional<Enum> fromRawValue(const Key& raw) const
    {
        for (const Row& candidate : m_rows)
            if (candidate.raw == raw)
                return candidate.value;
        return std::nullopt;
    }

    // The display text, or the raw text where the row gives none.
    QString displayText(Enum value) const
    {
        const Row* found = row(value);
        if (found == nullptr)
            return {};
        if (!found->display.isNull())
            return found->display.toString();
        if constexpr (std::is_same_v<Raw, QStringView>)
            return found->raw.toString();
        else
            return QString::number(found->raw);
    }

private:
    std::array<Row, count> m_rows;
    std::array<Enum, count> m_cases{};
};

// Counts the rows itself: enumTable<Codec, QStringView>({{Codec::aac, u"aac"}, …}).
template <typename Enum, typename Raw, std::size_t count>
constexpr EnumTable<Enum, Raw, count> enumTable(const EnumRow<Enum, Raw> (&rows)[count])
{
    std::array<EnumRow<Enum, Raw>, count> copied{};
    for (std::size_t index = 0; index < count; ++index)
        copied[index] = rows[index];
    return EnumTable<Enum, Raw, count>(copied);
}

} // namespace ConversionEngine
