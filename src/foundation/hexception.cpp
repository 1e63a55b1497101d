#include "foundation/hexception.h"

int HException::m_count = 0;

HException::HException(const std::string &message) : m_message(message)
{
    ++m_count;
}

HException::HException(const HException &other) : m_message(other.m_message)
{
    ++m_count;
}

HException::~HException()
{
    --m_count;
}
