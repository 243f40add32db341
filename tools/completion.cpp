#include "completion.h"

#include <iostream>
#include <memory>

namespace tool {
namespace {

std::string joined(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words) line += (line.empty() ? "" : " ") + word;
    return line;
}

// The case of the script for one command, and those of the commands below it. path: "zk move".
void write_cases(const CLI::App& command, const std::string& path, std::ostream& out) {
    std::vector<std::string> commands, options;
    for (const CLI::App* below : command.get_subcommands(nullptr)) commands.push_back(below->get_name());
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& name : option->get_lnames()) options.push_back("--" + name);
        for (const std::string& name : option->get_snames()) options.push_back("-" + name);
    }
    out << "        \"" << path << "\") commands=\"" << joined(commands) << "\" options=\"" << joined(options)
        << "\" ;;\n";
    for (const CLI::App* below : command.get_subcommands(nullptr))
        write_cases(*below, path + " " + below->get_name(), out);
}

// Without a word of ours the shell completes names of files.
void write_bash(const CLI::App& zk, std::ostream& out) {
    out << R"(_zk() {
    local path=zk word commands options current=${COMP_WORDS[COMP_CWORD]}
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        _zk_words "$path"
        case " $commands " in *" $word "*) path="$path $word" ;; esac
    done
    _zk_words "$path"
    case $current in -*) commands=$options ;; esac
    COMPREPLY=($(compgen -W "$commands" -- "$current"))
}
_zk_words() {
    case $1 in
)";
    write_cases(zk, "zk", out);
    out << "    esac\n}\ncomplete -o default -F _zk zk\n";
}

// Sections of the manual page, as help2man includes them.
void write_manual(const CLI::App& command, const std::string& path, std::ostream& out) {
    for (const CLI::App* below : command.get_subcommands(nullptr)) {
        const std::string name = path + " " + below->get_name();
        out << ".SS \"" << name << "\"\n" << below->get_description() << ".\n";
        for (const CLI::Option* option : below->get_options()) {
            if (option == below->get_help_ptr()) continue;
            out << ".TP\n.B ";
            for (const char letter : option->get_name(true, true))
                out << (letter == '-' ? "\\-" : std::string(1, letter));
            out << '\n' << option->get_description() << '\n';
        }
        write_manual(*below, name, out);
    }
}

}  // namespace

void add_completion(CLI::App& zk) {
    const auto shell = std::make_shared<std::string>();
    CLI::App* command = zk.add_subcommand("completion", "print a script by which a shell completes these commands");
    command->add_option("SHELL", *shell, "bash or zsh: eval \"$(zk completion bash)\"; man: the manual page's sections")
        ->required()
        ->check(CLI::IsMember({"bash", "zsh", "man"}));
    command->callback([&zk, shell] {
        if (*shell == "man") {
            std::cout << "[COMMANDS]\n";
            return write_manual(zk, "zk", std::cout);
        }
        if (*shell == "zsh") std::cout << "autoload -U +X bashcompinit && bashcompinit\n";
        write_bash(zk, std::cout);
    });
}

}  // namespace tool
