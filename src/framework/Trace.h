#pragma once
// Tracing: the hardware component's printf-style calls, the stream tracer,
// and the sinks (a file, standard error, an in-memory capture for tests).
//
// Off by default. Level and destination come from the configuration keys
// "trace.level" (off, min, mid, max) and "trace.file" (a path, or "stderr");
// trace::configure() reads them. Calls below the active level return before
// any formatting.
#include <string>
#include <vector>
#include "framework/String.h"

#if defined(__GNUC__)
#define NIMFW_PRINTF(fmt, args) __attribute__((format(printf, fmt, args)))
#else
#define NIMFW_PRINTF(fmt, args)
#endif

namespace trace {

enum class Level { Off = 0, Min = 1, Mid = 2, Max = 3 };

const char* levelName(Level level);
bool parseLevel(const std::string& text, Level& out);  // off|min|mid|max or 0-3

// Reads "trace.level" and "trace.file" from NimCfg and applies them; the
// file is opened only when the level is not off. False (tracing goes to
// standard error) when the file cannot be opened.
bool configure();
void setLevel(Level level);
Level level();
inline bool enabled(Level wanted);
// Destination: "" or "stderr" for standard error, otherwise a file appended to.
bool setFile(const std::string& path);

// One emitted line, as a capture sees it.
struct Record {
    Level level;
    std::string file;
    int line;
    std::string function;
    std::string text;
    std::string formatted;  // the whole line as a file sink writes it
};

// While alive, every line is recorded here (and not written elsewhere), and
// the level is raised to `level`. Restores the previous set-up when destroyed.
class Capture {
public:
    explicit Capture(Level level = Level::Max);
    ~Capture();
    Capture(const Capture&) = delete;
    Capture& operator=(const Capture&) = delete;

    const std::vector<Record>& records() const { return m_records; }
    std::vector<std::string> texts() const;
    // True when some line's text contains `needle`.
    bool contains(const std::string& needle) const;
    void clear() { m_records.clear(); }

private:
    friend void emit(Level, const char*, int, const char*, std::string&&);
    std::vector<Record> m_records;
    Capture* m_previous;
    Level m_previousLevel;
};

// Writes one line; callers have checked the level already.
void emit(Level level, const char* file, int line, const char* function, std::string&& text);

namespace detail { extern Level g_level; }
inline bool enabled(Level wanted) { return wanted != Level::Off && wanted <= detail::g_level; }

}  // namespace trace

// Handle of the hardware trace component.
int getCcLogHw();

class CcLogWrapper {
public:
    // Function entry and exit, at the middle level.
    static void traceMidEntry(int handle, int line, const char* file, const char* function,
                              const char* format, ...) NIMFW_PRINTF(5, 6);
    static void traceMidExit(int handle, int line, const char* file, const char* function,
                             const char* format, ...) NIMFW_PRINTF(5, 6);
    static void traceMIN(int handle, int line, const char* file, const char* function,
                         const char* format, ...) NIMFW_PRINTF(5, 6);
    static void traceMID(int handle, int line, const char* file, const char* function,
                         const char* format, ...) NIMFW_PRINTF(5, 6);
    static void traceMAX(int handle, int line, const char* file, const char* function,
                         const char* format, ...) NIMFW_PRINTF(5, 6);
};

// Stream tracer: Trace(Tracer::getInstance(Tracer::CONFIG), "function") << "text" << 3;
// emits one line at the middle level when the Trace is destroyed.
class Tracer {
public:
    enum Component { HARDWARE = 0, CONFIG = 1, FRAMEWORK = 2 };
    static Tracer& getInstance(Component component);
    Component component() const { return m_component; }
    const char* name() const;

private:
    explicit Tracer(Component component) : m_component(component) {}
    Component m_component;
};

class Trace {
public:
    Trace(Tracer& tracer, const char* function, trace::Level level = trace::Level::Mid);
    ~Trace();
    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;

    Trace& operator<<(const char* text);
    Trace& operator<<(const std::string& text);
    Trace& operator<<(const wchar_t* text);
    Trace& operator<<(const std::wstring& text);
    Trace& operator<<(const String& text);
    Trace& operator<<(int value);
    Trace& operator<<(long value);
    Trace& operator<<(unsigned long value);
    Trace& operator<<(unsigned value);
    Trace& operator<<(Trace& (*modifier)(Trace&)) { return modifier(*this); }

    // Modifiers: the following integers in hexadecimal / decimal.
    static Trace& hex(Trace& t) { t.m_hex = true; return t; }
    static Trace& dec(Trace& t) { t.m_hex = false; return t; }

private:
    Tracer& m_tracer;
    const char* m_function;
    trace::Level m_level;
    bool m_active;
    bool m_hex = false;
    std::string m_text;
};
