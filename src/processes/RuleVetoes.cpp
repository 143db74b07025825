#include "processes/RuleVetoes.h"

#include <algorithm>
#include <array>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;
using enum AIFramework;

bool isOneOf(const QString &text, const auto &list)
{
    return std::ranges::find(list, text) != list.end();
}

/// Programs for developers: what they are given to work on says nothing about what they are.
constexpr std::array tools{"pip"_L1,
                           "pip3"_L1,
                           "uv"_L1,
                           "conda"_L1,
                           "mamba"_L1,
                           "pipx"_L1,
                           "poetry"_L1,
                           "ipykernel_launcher"_L1,
                           "ipykernel"_L1,
                           "ipython"_L1,
                           "ipython3"_L1,
                           "jupyter"_L1,
                           "notebook"_L1,
                           "jupyterlab"_L1,
                           "nbconvert"_L1,
                           "pytest"_L1,
                           "py.test"_L1,
                           "tox"_L1,
                           "nox"_L1,
                           "unittest"_L1,
                           "coverage"_L1,
                           "black"_L1,
                           "ruff"_L1,
                           "mypy"_L1,
                           "dmypy"_L1,
                           "pylint"_L1,
                           "flake8"_L1,
                           "isort"_L1,
                           "pyright"_L1,
                           "pylsp"_L1,
                           "basedpyright"_L1,
                           "jedi-language-server"_L1,
                           "sphinx"_L1,
                           "sphinx-build"_L1,
                           "mkdocs"_L1,
                           "http.server"_L1,
                           "build"_L1,
                           "venv"_L1,
                           "virtualenv"_L1,
                           "compileall"_L1,
                           "cython"_L1,
                           "setup.py"_L1,
                           "tensorboard"_L1,
                           "snakeviz"_L1,
                           "py-spy"_L1,
                           "lsp_server.py"_L1,
                           "pydevconsole.py"_L1,
                           "run-jedi-language-server.py"_L1,
                           "json.tool"_L1,
                           "zipfile"_L1,
                           "tarfile"_L1,
                           "pdoc"_L1,
                           "rclone"_L1,
                           "dvc"_L1,
                           "aws"_L1,
                           "gsutil"_L1,
                           "scons"_L1,
                           "meson"_L1,
                           "meson.py"_L1,
                           "ninja"_L1,
                           "conan"_L1,
                           "pre-commit"_L1,
                           "pre_commit"_L1,
                           "ansible-playbook"_L1,
                           "watchfiles"_L1,
                           "twine"_L1,
                           "gdb"_L1,
                           "lit.py"_L1};

bool runsATool(const ProgramRun &run)
{
    const QString module = run.module.section(u'.', 0, 0);
    return isOneOf(run.scriptName(), tools) || isOneOf(run.module, tools) || isOneOf(module, tools)
        || run.scriptName().startsWith("jupyter-"_L1);
}

/// "forge" as a word of its own, or as the end of another web interface's name: not as in
/// "miniforge3", "conda-forge", "forgejo" or "sourceforge".
bool namesForge(const QString &text)
{
    constexpr std::array parts{"reforge"_L1, "webui-forge"_L1, "webui_forge"_L1};
    constexpr auto sensitivity = Qt::CaseInsensitive;
    return text.compare("forge"_L1, sensitivity) == 0 || text.startsWith("forge-"_L1, sensitivity)
        || text.startsWith("--forge"_L1, sensitivity)
        || std::ranges::any_of(parts,
                               [&text](auto part) { return text.contains(part, sensitivity); });
}

/// What distinguishes a framework in a command line, beyond the first rules' fragments.
struct Marks {
    AIFramework framework;
    std::array<QLatin1StringView, 4> fragments;
    std::array<QLatin1StringView, 2> scripts; ///< That it starts by a relative path.
};

constexpr std::array marks{
    Marks{mlx, {"mlx_lm"_L1, "mlx_vlm"_L1, "mlx-examples"_L1, "mlx"_L1}, {}},
    Marks{vllm, {"vllm"_L1}, {}},
    Marks{comfyUI, {"comfyui"_L1}, {"main.py"_L1}},
    Marks{sdWebUI,
          {"automatic1111"_L1, "sd-webui"_L1, "stable-diffusion"_L1, "webui.py"_L1},
          {"launch.py"_L1, "webui.py"_L1}},
    Marks{transformers, {"transformers"_L1, "huggingface"_L1}, {}},
};

bool holdsAny(const QString &text, const Marks &row)
{
    return std::ranges::any_of(row.fragments, [&text](QLatin1StringView fragment) {
        return !fragment.isEmpty() && text.contains(fragment, Qt::CaseInsensitive);
    });
}

/// Whether a folder belongs to the framework: the name of its sources, or of an application with
/// what people append to it.
bool isFolderOf(const QString &folder, const Marks &row)
{
    const bool isApplication = !row.scripts.front().isEmpty();
    return std::ranges::any_of(row.fragments, [&](QLatin1StringView fragment) {
        return !fragment.isEmpty()
            && (isApplication ? folder.startsWith(fragment) : folder == fragment);
    });
}

bool anyFolderOf(const QString &path, const Marks &row)
{
    QStringList folders = path.toLower().split(u'/', Qt::SkipEmptyParts);
    if (!folders.isEmpty())
        folders.removeLast();
    const bool forge = row.framework == sdWebUI;
    return std::ranges::any_of(folders, [&](const QString &folder) {
        return isFolderOf(folder, row) || (forge && namesForge(folder));
    });
}

/// Whether module, script or arguments name the framework; the interpreter's own path counts only
/// for an application that is started from its folder.
bool isNamed(const ProgramRun &run, const QString &interpreter, const Marks &row)
{
    const bool forge = row.framework == sdWebUI;
    const QString script = run.scriptName();
    if (holdsAny(run.module, row) || holdsAny(script, row) || anyFolderOf(run.script, row))
        return true;
    for (const QString &argument : run.arguments) {
        if (holdsAny(argument, row) || (forge && namesForge(argument)))
            return true;
    }
    return !script.isEmpty() && isOneOf(script, row.scripts) && anyFolderOf(interpreter, row);
}

bool isToolAtWork(const ProgramRun &run, const QStringList &, AIFramework)
{
    return run.isInterpreter && runsATool(run);
}

bool isNamedOnlyByAFolder(const ProgramRun &run, const QStringList &argv, AIFramework framework)
{
    if (!run.isInterpreter || argv.isEmpty())
        return false;
    const auto row = std::ranges::find(marks, framework, &Marks::framework);
    return row != marks.end() && !isNamed(run, argv.first(), *row);
}

/// "films-server" contains "lms-".
bool isAnotherWord(const ProgramRun &run, const QStringList &, AIFramework framework)
{
    return framework == lmStudio && run.name.contains("lms-"_L1) && !run.name.startsWith("lms-"_L1);
}

/// When one applies, what the first rules found does not hold.
constexpr std::array vetoes{isToolAtWork, isNamedOnlyByAFolder, isAnotherWord};

} // namespace

bool isVetoed(const ProgramRun &run, const QStringList &argv, AIFramework framework)
{
    return std::ranges::any_of(vetoes, [&](auto veto) { return veto(run, argv, framework); });
}

} // namespace corvane
