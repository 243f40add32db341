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
    out << "        \"" << path << "\") below=\"" << joined(commands) << "\" flags=\"" << joined(options) << "\" ;;\n";
    for (const CLI::App* below : command.get_subcommands(nullptr))
        write_cases(*below, path + " " + below->get_name(), out);
}

// Without a word of ours the shell completes names of files. zsh runs it too, to which path, commands and options are
// variables of its own.
void write_bash(const CLI::App& zk, std::ostream& out) {
    out << R"(_zk() {
    local command=zk word below flags current=${COMP_WORDS[COMP_CWORD]}
    for word in "${COMP_WORDS[@]:1:$((COMP_CWORD - 1))}"; do
        _zk_words "$command"
        case " $below " in *" $word "*) command="$command $word" ;; esac
    done
    _zk_words "$command"
    case $current in -*) below=$flags ;; esac
    COMPREPLY=($(compgen -W "$below" -- "$current"))
}
_zk_words() {
    case $1 in
)";
    write_cases(zk, "zk", out);
    out << "    esac\n}\ncomplete -o default -F _zk zk\n";
}

std::string quoted(const std::string& text) {
    std::string all = "'";
    for (const char letter : text) all += (letter == '\'' || letter == '\\' ? "\\" : "") + std::string(1, letter);
    return all + "'";
}

// The lines for what may follow a command. given: the condition that the command is there.
void write_fish(const CLI::App& command, const std::string& given, std::ostream& out) {
    std::vector<std::string> names;
    for (const CLI::App* below : command.get_subcommands(nullptr)) names.push_back(below->get_name());
    const std::string seen = "__fish_seen_subcommand_from ", and_then = given.empty() ? "" : given + "; and ";
    const std::string none = given.empty() ? "__fish_use_subcommand" : and_then + "not " + seen + joined(names);
    for (const CLI::App* below : command.get_subcommands(nullptr)) {
        out << "complete -c zk -f -n " << quoted(none) << " -a " << below->get_name() << " -d "
            << quoted(below->get_description()) << '\n';
        write_fish(*below, and_then + seen + below->get_name(), out);
    }
    for (const CLI::Option* option : command.get_options()) {
        if (option->get_positional() || option->get_lnames().empty()) continue;
        out << "complete -c zk";
        if (!given.empty()) out << " -n " << quoted(given);
        for (const std::string& name : option->get_lnames()) out << " -l " << name;
        for (const std::string& name : option->get_snames()) out << " -s " << name;
        out << (option->get_items_expected_max() > 0 ? " -r" : "") << " -d " << quoted(option->get_description())
            << '\n';
    }
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
    command
        ->add_option("SHELL", *shell,
                     "bash, zsh or fish: eval \"$(zk completion bash)\"; man: the manual page's sections")
        ->required()
        ->check(CLI::IsMember({"bash", "zsh", "fish", "man"}));
    command->callback([&zk, shell] {
        if (*shell == "man") {
            std::cout << "[COMMANDS]\n";
            return write_manual(zk, "zk", std::cout);
        }
        if (*shell == "fish") return write_fish(zk, "", std::cout);
        if (*shell == "zsh") std::cout << "autoload -U +X bashcompinit && bashcompinit\n";
        write_bash(zk, std::cout);
    });
}

}  // namespace tool
