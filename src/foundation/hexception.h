#pragma once

#include <string>

/// The exception for fatal conditions; thrown by value, caught by reference.
class HException
{
public:
    /// Makes an exception carrying `message`.
    explicit HException(const std::string &message);
    HException(const HException &other);
    HException &operator=(const HException &other) = default;
    virtual ~HException();

    /// The text that `main` prints after "error: ".
    const std::string &message() const { return m_message; }
    /// The message as a C string, for printf-style output.
    const char *what() const { return m_message.c_str(); }

    /// The number of instances alive now; copies count too.
    static int m_count;

private:
    std::string m_message;
};
