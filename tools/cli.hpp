// Argument handling shared by every `zel` command and by the zel-bench program: getopt_long
// with the tool's own messages, and checked parsing of option values.
//
// Conventions: exit code 0 on success, 1 when the work itself failed, 2 for a usage error (unknown
// command, suite, section or option, a missing or bad value). A usage error names the command and
// ends with "Try '<command> --help'." on standard error; --help prints to standard output.
#pragma once

#include <getopt.h>

#include <cstdint>
#include <vector>

namespace zel::tool {

constexpr int exit_ok = 0;
constexpr int exit_failure = 1;
constexpr int exit_usage = 2;

// Prints "<command>: <message>" and the --help hint to standard error; returns exit_usage.
int usage_error(const char *command, const char *format, ...) __attribute__((format(printf, 2, 3)));

// One pass of getopt_long over a command's arguments (argv[0] is the command's own name).
// Options may come before or after operands; "--" ends the options.
//
//     option_parser parser("zel solve", argc, argv, "ht:o:", long_options);
//     for (int c; (c = parser.next()) != -1;)
//         switch (c) {
//         case 'h': ...
//         case 't': type = parser.value(); break;
//         default: return exit_usage; // parser.next() already said what was wrong
//         }
//     operands: argv[parser.first_operand()] .. argv[argc - 1]
class option_parser {
public:
    option_parser(const char *command, int argc, char **argv, const char *short_options,
                  const option *long_options);
    // The next option's code; -1 after the last option; '?' after printing the message for an
    // unknown option or a missing value.
    int next();
    // The current option's value (null for options without one).
    const char *value() const { return optarg; }
    // The current option as the user wrote it ("--sizes", "-s"), for messages about its value.
    const char *spelling() const { return spelling_; }
    // Index in argv of the first operand once next() has returned -1 (operands are moved last).
    int first_operand() const { return optind; }
    const char *command() const { return command_; }

private:
    const char *command_;
    int argc_;
    char **argv_;
    const char *short_options_;
    const option *long_options_;
    char spelling_[64];
};

// A decimal integer in [low, high], the whole text and nothing else.
bool parse_integer(const char *text, int64_t low, int64_t high, int64_t &value);

// A comma-separated list of decimal integers, each in [low, high], at most max_count of them.
bool parse_integer_list(const char *text, int64_t low, int64_t high, int max_count, std::vector<int64_t> &values);

// The value of an option that takes a number, with the usage message when it is not one.
bool option_integer(const option_parser &parser, int64_t low, int64_t high, int64_t &value);

} // namespace zel::tool
