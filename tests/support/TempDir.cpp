#include "support/TempDir.h"

#include <dirent.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace testsupport {

TempDir::TempDir()
{
    char name[] = "/tmp/invscan-test-XXXXXX";
    if (mkdtemp(name)) m_path = name;
}

TempDir::~TempDir()
{
    std::error_code ignored;  // a leftover temp folder is harmless
    if (!m_path.empty()) std::filesystem::remove_all(m_path, ignored);
}

std::string TempDir::write(const std::string& relative, const std::string& content, int mode) const
{
    const std::string full = m_path + "/" + relative;
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(full).parent_path(), ignored);
    std::ofstream(full, std::ios::binary) << content;
    chmod(full.c_str(), static_cast<mode_t>(mode));
    return full;
}

std::string TempDir::script(const std::string& relative, const std::string& body) const
{
    return write(relative, "#!/bin/sh\n" + body, 0755);
}

ScopedEnv::ScopedEnv(const char* name, const char* value) : m_name(name)
{
    const char* old = std::getenv(name);
    m_had = old != nullptr;
    if (old) m_old = old;
    if (value)
        setenv(name, value, 1);
    else
        unsetenv(name);
}

ScopedEnv::~ScopedEnv()
{
    if (m_had)
        setenv(m_name.c_str(), m_old.c_str(), 1);
    else
        unsetenv(m_name.c_str());
}

std::string readFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

int openDescriptorCount()
{
    int n = 0;
    if (DIR* d = opendir("/proc/self/fd")) {
        while (readdir(d)) ++n;
        closedir(d);
    }
    return n;
}

bool hasZombieChild()
{
    siginfo_t info{};
    return waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid != 0;
}

}  // namespace testsupport
