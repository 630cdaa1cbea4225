#include "framework/String.h"

#include "framework/utils.h"

String::String(const char* narrow) : m_text(narrow ? utils::utf8ToWideChar(narrow) : std::wstring()) {}
String::String(const std::string& narrow) : m_text(utils::utf8ToWideChar(narrow)) {}
String::String(const wchar_t* wide) : m_text(wide ? wide : L"") {}
String::String(const std::wstring& wide) : m_text(wide) {}

int String::compareTo(const String& other) const
{
    return m_text.compare(other.m_text);
}

std::string String::narrow() const
{
    return utils::stringToUTF8(m_text);
}
