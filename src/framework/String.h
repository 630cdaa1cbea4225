#pragma once
// The framework's text class. Holds wide text; converts to and from UTF-8.
#include <string>

static_assert(sizeof(wchar_t) == 4, "Kor strings are 32-bit wide characters: wchar_t must be 32 bits");

class String {
public:
    String() = default;
    String(const char* narrow);            // UTF-8; null gives empty
    String(const std::string& narrow);     // UTF-8
    String(const wchar_t* wide);           // null gives empty
    String(const std::wstring& wide);

    // 0 when equal, negative when this sorts first, positive otherwise.
    int compareTo(const String& other) const;
    bool operator<(const String& other) const { return compareTo(other) < 0; }
    bool operator==(const String& other) const { return m_text == other.m_text; }
    bool operator!=(const String& other) const { return m_text != other.m_text; }

    String& operator+=(const String& other) { m_text += other.m_text; return *this; }
    friend String operator+(String lhs, const String& rhs) { lhs += rhs; return lhs; }

    const std::wstring& wide() const { return m_text; }
    const wchar_t* c_str() const { return m_text.c_str(); }
    std::string narrow() const;            // UTF-8
    size_t length() const { return m_text.size(); }
    bool empty() const { return m_text.empty(); }

private:
    std::wstring m_text;
};
