#pragma once

#include "support/MachineTree.h"

#include <string>
#include <vector>

namespace corvane::test {

/// A folder with stores of models that a test makes up. Paths are relative to its root.
class ModelTree {
public:
    std::string root() const { return m_tree.root(); }
    std::string store() const { return root() + "/ollama"; }

    void write(const std::string &path, const std::string &text) const { m_tree.write(path, text); }

    /// The digest that stands for a model's weights: 64 times that digit.
    static std::string digest(char digit) { return std::string(64, digit); }
    std::string blob(char digit) const { return store() + "/blobs/sha256-" + digest(digit); }
    void writeBlob(char digit, const std::string &text) const
    {
        write("ollama/blobs/sha256-" + digest(digit), text);
    }

    /// A manifest whose weights have that digest, as the present server writes it.
    static std::string manifest(char digit);

    /// A list of manifests.
    static std::string list(const std::string &digits);

    /// "registry.ollama.ai/library/qwen3/8b" below one of the two folders.
    void writeManifest(const std::string &name, const std::string &text,
                       const std::string &folder = "manifests") const
    {
        write("ollama/" + folder + '/' + name, text);
    }

    /// A manifest that is a link to a blob.
    void linkManifest(const std::string &name, const std::string &target) const;

private:
    MachineTree m_tree;
};

} // namespace corvane::test
