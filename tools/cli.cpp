// getopt_long with the tool's messages instead of getopt's, and checked number parsing.
#include "cli.hpp"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace zel::tool {

int usage_error(const char *command, const char *format, ...)
{
    std::fprintf(stderr, "%s: ", command);
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
    std::fprintf(stderr, "\nTry '%s --help'.\n", command);
    return exit_usage;
}

option_parser::option_parser(const char *command, int argc, char **argv, const char *short_options,
                             const option *long_options)
    : command_(command), argc_(argc), argv_(argv), short_options_(short_options), long_options_(long_options),
      spelling_()
{
    // 0 makes glibc start over: the tool parses its own options before the command's.
    optind = 0;
    opterr = 0;
}

namespace {

// The long option whose code is `code`, if any.
const option *long_option_of(const option *options, int code)
{
    for (; options != nullptr && options->name != nullptr; ++options)
        if (options->flag == nullptr && options->val == code)
            return options;
    return nullptr;
}

bool is_long_form(const char *word) { return word != nullptr && std::strncmp(word, "--", 2) == 0; }

} // namespace

int option_parser::next()
{
    // A leading ':' makes a missing value come back as ':' rather than '?'; a leading '+' (stop
    // at the first operand) must stay first.
    char option_string[128];
    const bool stop_at_operand = short_options_[0] == '+';
    std::snprintf(option_string, sizeof option_string, "%s:%s", stop_at_operand ? "+" : "", short_options_ + (stop_at_operand ? 1 : 0));
    int long_index = -1;
    const int code = getopt_long(argc_, argv_, option_string, long_options_, &long_index);
    const char *word = optind > 0 && optind <= argc_ ? argv_[optind - 1] : nullptr;
    if (code == -1)
        return -1;
    if (code != '?' && code != ':') {
        if (long_index >= 0)
            std::snprintf(spelling_, sizeof spelling_, "--%s", long_options_[long_index].name);
        else
            std::snprintf(spelling_, sizeof spelling_, "-%c", code);
        return code;
    }
    const option *known = long_option_of(long_options_, optopt);
    if (code == ':') {
        if (is_long_form(word) && known != nullptr)
            usage_error(command_, "option '--%s' needs a value", known->name);
        else
            usage_error(command_, "option '-%c' needs a value", optopt);
    } else if (optopt == 0 || (is_long_form(word) && known == nullptr)) {
        const size_t length = word ? std::strcspn(word, "=") : 0;
        usage_error(command_, "unknown option '%.*s'", static_cast<int>(length), word ? word : "");
    } else if (is_long_form(word) && known != nullptr) {
        usage_error(command_, "option '--%s' takes no value", known->name);
    } else {
        usage_error(command_, "unknown option '-%c'", optopt);
    }
    return '?';
}

bool parse_integer(const char *text, int64_t low, int64_t high, int64_t &value)
{
    // strtoll accepts leading blanks and a sign; a count written by a person has neither.
    if (text == nullptr || *text == '\0' || !(*text == '-' || (*text >= '0' && *text <= '9')))
        return false;
    errno = 0;
    char *end = nullptr;
    const long long parsed = std::strtoll(text, &end, 10);
    if (errno != 0 || *end != '\0' || parsed < low || parsed > high)
        return false;
    value = parsed;
    return true;
}

bool parse_integer_list(const char *text, int64_t low, int64_t high, int max_count, std::vector<int64_t> &values)
{
    std::vector<int64_t> parsed;
    char item[32];
    for (const char *cursor = text;;) {
        const size_t length = std::strcspn(cursor, ",");
        if (length == 0 || length >= sizeof item || static_cast<int>(parsed.size()) == max_count)
            return false;
        std::memcpy(item, cursor, length);
        item[length] = '\0';
        int64_t number = 0;
        if (!parse_integer(item, low, high, number))
            return false;
        parsed.push_back(number);
        if (cursor[length] == '\0')
            break;
        cursor += length + 1;
    }
    values = parsed;
    return true;
}

bool option_integer(const option_parser &parser, int64_t low, int64_t high, int64_t &value)
{
    if (parse_integer(parser.value(), low, high, value))
        return true;
    usage_error(parser.command(), "%s wants a whole number from %lld to %lld, not '%s'", parser.spelling(),
                static_cast<long long>(low), static_cast<long long>(high), parser.value());
    return false;
}

} // namespace zel::tool
