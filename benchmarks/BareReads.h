#pragma once

#include "platform/FileDescriptor.h"

#include <benchmark/benchmark.h>

#include <array>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

namespace corvane {

/// The bare system calls that a reader stands on: files that stay open, each read from its start in
/// one call. Files that are not there are left out.
class BareReads {
public:
    explicit BareReads(const std::vector<std::string> &paths)
    {
        for (const std::string &path : paths) {
            if (FileDescriptor file = openRegular(path, FileAccess::read))
                m_files.push_back(std::move(file));
        }
    }

    void operator()()
    {
        for (const FileDescriptor &file : m_files) {
            const ssize_t count = pread(file.get(), m_buffer.data(), m_buffer.size(), 0);
            benchmark::DoNotOptimize(count);
        }
    }

    std::size_t count() const { return m_files.size(); }

private:
    std::vector<FileDescriptor> m_files;
    std::array<char, 65'536> m_buffer = {};
};

} // namespace corvane
