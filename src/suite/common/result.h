#pragma once

#include <suite/common/suite_common_export.h>

#include <QString>

#include <optional>
#include <utility>
#include <variant>

/// What every part of the suite needs: failures as values, JSON read with its faults, folders. Any thread, where
/// nothing else is said.
namespace Common {

/// Why something could not be done, as a value: a host turns it into an exit code, a dialogue or a line of a log.
struct SUITE_COMMON_EXPORT Fault
{
    /// What hosts treat differently: one exit code for each.
    enum class Kind {
        Difference,   ///< a check found one
        Usage,        ///< what was asked for contradicts itself or does not exist
        BadData,      ///< an input is not what it should be
        NoInput,      ///< an input is not there or cannot be read
        Unavailable,  ///< a device, hub or lock cannot be had
        Internal,     ///< a fault of ours
        CannotCreate, ///< an output has no place, or would take another's
        InputOutput,  ///< reading or writing failed half way
        Timeout,      ///< no answer in time
        Protocol,     ///< an answer that is not understood
        Interrupted,  ///< the user ended it
    };

    Kind kind = Kind::Internal; ///< for programs; the texts below are for people
    QString subject;            ///< what it is about: "gray table x.csv, line 3"
    QString expected = {};      ///< "an integer from 0 to 255"; empty where nothing certain was expected
    QString found = {};         ///< what there was instead; without `expected` a sentence of its own: "no such file"
    QString hint = {};          ///< what to do about it; may be empty

    /// One line for people: "subject: expected ..., found ...". The hint is not in it.
    QString message() const;

    /// The texts count too.
    bool operator==(const Fault& other) const
    {
        return kind == other.kind && subject == other.subject && expected == other.expected && found == other.found &&
               hint == other.hint;
    }
};

/// A value, or the fault that stands in its way. Whoever gets one looks before taking the value out.
template <typename T>
class [[nodiscard]] Result
{
public:
    /// Success or failure; both convert, so that a function returns the one or the other. @{
    Result(T value) : m_content(std::in_place_index<0>, std::move(value)) {}
    Result(Fault fault) : m_content(std::in_place_index<1>, std::move(fault)) {}
    /// @}

    /// Whether there is a value.
    explicit operator bool() const { return m_content.index() == 0; }

    /// The value. Undefined behaviour where there is a fault. @{
    T& operator*() & { return *std::get_if<0>(&m_content); }
    const T& operator*() const& { return *std::get_if<0>(&m_content); }
    T&& operator*() && { return std::move(*std::get_if<0>(&m_content)); }
    T* operator->() { return std::get_if<0>(&m_content); }
    const T* operator->() const { return std::get_if<0>(&m_content); }
    /// @}

    /// The fault. Undefined behaviour where there is a value.
    const Fault& fault() const { return *std::get_if<1>(&m_content); }

private:
    std::variant<T, Fault> m_content;
};

/// What has nothing to give but may fail.
template <>
class [[nodiscard]] Result<void>
{
public:
    /// Done.
    Result() = default;
    /// Not done, for this reason.
    Result(Fault fault) : m_fault(std::move(fault)) {}

    /// Whether it was done.
    explicit operator bool() const { return !m_fault; }
    /// The reason. Undefined behaviour where it was done.
    const Fault& fault() const { return *m_fault; }

private:
    std::optional<Fault> m_fault;
};

} // namespace Common
