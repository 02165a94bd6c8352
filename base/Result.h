// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cassert>
#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace starbloom {

/// Why an operation failed, as one sentence that can be shown to a user as it is.
struct Error {
    std::string message;
};

/// The outcome of an operation that can fail for reasons outside the program: a value, or an Error.
///
/// The core hands errors up as values; only the shell and the command line show them. Asking a failed result for its
/// value, or a successful one for its error, is a programming error and asserts.
template <typename T>
class [[nodiscard]] Result {
public:
    Result(T value)
        : m_content(std::in_place_index<0>, std::move(value)) {}

    Result(Error error)
        : m_content(std::in_place_index<1>, std::move(error)) {}

    explicit operator bool() const { return m_content.index() == 0; }

    T& value() & { return checkedValue(*this); }

    const T& value() const& { return checkedValue(*this); }

    T&& value() && { return std::move(checkedValue(*this)); }

    const Error& error() const {
        assert(m_content.index() == 1);
        return *std::get_if<1>(&m_content);
    }

private:
    template <typename Self>
    static auto& checkedValue(Self& self) {
        assert(self.m_content.index() == 0);
        return *std::get_if<0>(&self.m_content);
    }

    std::variant<T, Error> m_content;
};

/// The outcome of an operation that yields nothing but success: `return {};` or an Error.
template <>
class [[nodiscard]] Result<void> {
public:
    Result() = default;

    Result(Error error)
        : m_error(std::move(error)) {}

    explicit operator bool() const { return !m_error.has_value(); }

    const Error& error() const {
        assert(m_error.has_value());
        return *m_error;
    }

private:
    std::optional<Error> m_error;
};

} // namespace starbloom
