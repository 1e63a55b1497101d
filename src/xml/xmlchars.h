#pragma once

// Character classes of the C locale for the XML reader. They are fixed here so that
// the process locale, which the application object takes from the environment,
// can't change what counts as a name or as whitespace.

/// Whitespace: space, tab, newline, vertical tab, form feed, carriage return.
inline bool isXMLSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// An ASCII letter.
inline bool isXMLLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// A decimal digit.
inline bool isXMLDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// A character of a name: letter, digit or underscore.
inline bool isXMLNameChar(char c)
{
    return isXMLLetter(c) || isXMLDigit(c) || c == '_';
}
