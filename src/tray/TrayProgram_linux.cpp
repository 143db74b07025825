#include "tray/TrayProgram_linux.h"

#include <QFile>

#include <filesystem>

namespace corvane {

TrayProgram trayProgram(std::uint32_t process, const std::string &root)
{
    const std::string folder = root + "proc/" + std::to_string(process);
    TrayProgram program;
    QFile name(QString::fromStdString(folder + "/comm"));
    if (name.open(QFile::ReadOnly))
        program.name = name.readAll().trimmed().toStdString();
    std::error_code refused;
    program.executable =
        std::filesystem::read_symlink(folder + "/exe", refused).filename().string();
    return program;
}

} // namespace corvane
