#include "support/MachineTree.h"

#include "support/Machines.h"

#include <filesystem>
#include <fstream>

namespace corvane::test {

namespace fs = std::filesystem;

MachineTree::MachineTree(const std::string &machineName)
{
    fs::copy(machine(machineName), root(),
             fs::copy_options::recursive | fs::copy_options::copy_symlinks);
}

void MachineTree::write(const std::string &path, const std::string &text) const
{
    const fs::path file = fs::path(root()) / path;
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::trunc) << text;
}

void MachineTree::remove(const std::string &path) const
{
    fs::remove_all(fs::path(root()) / path);
}

void MachineTree::link(const std::string &path, const std::string &target) const
{
    const fs::path link = fs::path(root()) / path;
    fs::create_directories(link.parent_path());
    fs::create_symlink(fs::path(root()) / target, link);
}

} // namespace corvane::test
