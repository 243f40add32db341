#include <algorithm>
#include <cctype>
#include <charconv>
#include <memory>
#include <optional>

#include "look/look.h"
#include "report.h"

namespace tool {
namespace {

std::optional<int> status_called(std::string name) {
    std::transform(name.begin(), name.end(), name.begin(), [](unsigned char letter) { return std::toupper(letter); });
#define X(status, number, text) \
    if (name == #status || "ZK_" + name == #status) return number;
    ZK_STATUS_LIST(X)
#undef X
    return std::nullopt;
}

template <class Number>
std::optional<Number> number_in(std::string_view text, int base) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

const char* name_of(ZK_GoOn go_on) {
    switch (go_on) {
        case ZK_GO_ON:
            return "the program may go on";
        case ZK_RETRY:
            return "the same call may succeed later";
        case ZK_MEND_FIRST:
            return "after the remedy";
        case ZK_MUST_NOT:
            break;
    }
    return "the arm needs a person";
}

Json explain(const std::string& code) {
    const bool hexadecimal_code = code.starts_with("0x") || code.starts_with("0X");
    const auto number =
        hexadecimal_code ? number_in<int>(std::string_view(code).substr(2), 16) : number_in<int>(code, 10);
    constexpr int kLargestStatus = 255;
    if (hexadecimal_code || number.value_or(0) > kLargestStatus) {
        if (number.value_or(-1) < 0 || *number > 0xffff)
            throw Failure(kUsage, "'" + code + "' is no error word such as 0x1001");
        const auto word = static_cast<std::uint16_t>(*number);
        return {{"word", hexadecimal(word)}, {"errors", json_of_errors(word, word)}};
    }
    const auto status = number ? number : status_called(code);
    ZK_Advice advice{};
    if (!status || ZK_Explain(*status, 0, 0, &advice) != ZK_OK) {
        throw Failure(kUsage, "'" + code + "' is no status such as -12 or ZK_LOST, and no error word such as 0x1001");
    }
    return {{"status", *status},
            {"text", ZK_Status_Text(*status)},
            {"cause", advice.cause},
            {"remedy", advice.remedy},
            {"go_on", name_of(advice.go_on)}};
}

}  // namespace

void add_explain(CLI::App& zk) {
    const auto code = std::make_shared<std::string>();
    add_looking(
        zk, "explain", "what a status, or an error word of the arm, means and what to do",
        [code] { return explain(*code); },
        [&](CLI::App& command) {
            command.add_option("CODE", *code, "a status such as -12 or ZK_LOST, or a word such as 0x1001")->required();
        });
}

}  // namespace tool
