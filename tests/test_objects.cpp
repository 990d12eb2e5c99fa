// The shipped objects: exported names, dependencies, and the README's C example.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::string binary_dir()
{
    const char *dir = std::getenv("ZEL_BINARY_DIR");
    return dir ? dir : ".";
}

std::string source_dir()
{
    const char *dir = std::getenv("ZEL_SOURCE_DIR");
    return dir ? dir : "..";
}

// Runs a shell command and returns its standard output; the exit status goes to *status.
std::string run(const std::string &command, int *status = nullptr)
{
    std::string output;
    FILE *pipe = popen(command.c_str(), "r");
    if (pipe == nullptr)
        return output;
    std::array<char, 4096> buffer;
    size_t got;
    while ((got = fread(buffer.data(), 1, buffer.size(), pipe)) > 0)
        output.append(buffer.data(), got);
    int code = pclose(pipe);
    if (status)
        *status = WIFEXITED(code) ? WEXITSTATUS(code) : -1;
    return output;
}

std::string library(const char *name) { return binary_dir() + "/" + name; }

// The names an object exports.
std::set<std::string> exported_names(const char *object)
{
    std::istringstream lines(run("nm -D --defined-only " + library(object) + " | awk '{print $3}'"));
    std::set<std::string> names;
    for (std::string name; std::getline(lines, name);)
        if (!name.empty())
            names.insert(name);
    return names;
}

// Every regular file under the source tree's include/, sorted.
std::vector<std::filesystem::path> public_headers()
{
    std::vector<std::filesystem::path> files;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(source_dir() + "/include"))
        if (entry.is_regular_file())
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

// A header as a reader of its declarations sees it: comments and preprocessor lines (with their
// continuations) blanked, so that a name found only in a comment or inside a macro body does not
// count as declared.
std::string declarations_text(const std::string &text)
{
    std::string out;
    size_t i = 0;
    bool line_start = true;
    while (i < text.size()) {
        if (text.compare(i, 2, "/*") == 0) {
            size_t end = text.find("*/", i + 2);
            i = end == std::string::npos ? text.size() : end + 2;
            out += ' ';
        } else if (text.compare(i, 2, "//") == 0) {
            i = text.find('\n', i);
            i = i == std::string::npos ? text.size() : i;
        } else if (line_start && text[i] == '#') {
            while (i < text.size() && !(text[i] == '\n' && text[i - 1] != '\\'))
                ++i;
        } else {
            if (text[i] == '\n')
                line_start = true;
            else if (!std::isspace(static_cast<unsigned char>(text[i])))
                line_start = false;
            out += text[i++];
        }
    }
    return out;
}

// Names spelled `zel_...(` in the declarations of a text.
std::set<std::string> declared_functions(const std::string &declarations)
{
    std::set<std::string> names;
    for (size_t at = declarations.find("zel_"); at != std::string::npos; at = declarations.find("zel_", at + 1)) {
        if (at > 0 && (std::isalnum(static_cast<unsigned char>(declarations[at - 1])) || declarations[at - 1] == '_'))
            continue;
        size_t end = at;
        while (end < declarations.size() &&
               (std::isalnum(static_cast<unsigned char>(declarations[end])) || declarations[end] == '_'))
            ++end;
        if (end < declarations.size() && declarations[end] == '(')
            names.insert(declarations.substr(at, end - at));
    }
    return names;
}

std::string read_file(const std::filesystem::path &path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

} // namespace

TEST(Objects, ExportOnlyPrefixedNames)
{
    for (const char *name : {"libzel_core.so.2", "libzel_sequential.so.2"}) {
        int status = 0;
        std::string all = run("nm -D --defined-only " + library(name) + " | awk '{print $3}'", &status);
        ASSERT_EQ(status, 0) << name;
        ASSERT_FALSE(all.empty()) << name;
        std::string foreign = run("nm -D --defined-only " + library(name) + " | awk '{print $3}' | grep -v '^zel_'");
        EXPECT_EQ(foreign, "") << name << " exports names outside zel_";
    }
}

TEST(Objects, LayerNeedsNeitherCoreNorBlas)
{
    std::string dynamic = run("readelf -d " + library("libzel_sequential.so.2"));
    ASSERT_NE(dynamic.find("(SONAME)"), std::string::npos);
    EXPECT_NE(dynamic.find("[libzel_sequential.so.2]"), std::string::npos);
    for (const char *forbidden : {"libzel_core", "blas", "lapack", "gfortran"})
        EXPECT_EQ(dynamic.find(forbidden), std::string::npos) << forbidden;
    // The core's imports stay undefined in the layer.
    std::string undefined = run("nm -D --undefined-only " + library("libzel_sequential.so.2"));
    EXPECT_NE(undefined.find("zel_serv_lock"), std::string::npos);
}

TEST(Objects, CoreKeepsItsBlasPrivate)
{
    std::string dynamic = run("readelf -d " + library("libzel_core.so.2"));
    EXPECT_NE(dynamic.find("[libzel_core.so.2]"), std::string::npos);
    for (const char *forbidden : {"libopenblas", "libblas", "liblapack", "libzel_sequential"})
        EXPECT_EQ(dynamic.find(forbidden), std::string::npos) << forbidden;
    std::string exported = run("nm -D --defined-only " + library("libzel_core.so.2"));
    EXPECT_EQ(exported.find(" dgetrf_"), std::string::npos);
}

TEST(Objects, ReadmeExampleBuildsAndRuns)
{
    const std::string program = binary_dir() + "/tests/readme_example";
    std::string compile = std::string("cc -std=c99 -Wall -Werror ") + ZEL_EXAMPLE_FLAGS + " -I" + source_dir() +
                          "/include " + source_dir() + "/examples/batched_lu.c -o " + program + " -L" +
                          binary_dir() + " -lzel_core -lzel_sequential -Wl,-rpath," + binary_dir() + " 2>&1";
    int status = -1;
    std::string diagnostics = run(compile, &status);
    ASSERT_EQ(status, 0) << compile << "\n" << diagnostics;
    std::string output = run(program + " 2>&1", &status);
    EXPECT_EQ(status, 0) << output;
    EXPECT_NE(output.find("Zelmath 2."), std::string::npos) << output;
    EXPECT_NE(output.find("x_0 = (1, 1, 1), info 0"), std::string::npos) << output;
    EXPECT_NE(output.find("x_1 = (1, 1, 1), info 0"), std::string::npos) << output;
}

// A user who searches the installed headers for an entry point's full name finds its prototype,
// and the headers promise nothing that the objects do not export.
TEST(Objects, EveryExportHasAWrittenOutPrototype)
{
    std::set<std::string> declared;
    for (const auto &header : public_headers()) {
        std::set<std::string> names = declared_functions(declarations_text(read_file(header)));
        declared.insert(names.begin(), names.end());
    }
    ASSERT_FALSE(declared.empty());

    std::set<std::string> exported;
    for (const char *object : {"libzel_core.so.2", "libzel_sequential.so.2"}) {
        std::set<std::string> names = exported_names(object);
        ASSERT_FALSE(names.empty()) << object;
        for (const std::string &name : names)
            EXPECT_TRUE(declared.count(name)) << object << " exports " << name
                                              << " but no header under include/ declares " << name << "(";
        exported.insert(names.begin(), names.end());
    }
    for (const std::string &name : declared)
        EXPECT_TRUE(exported.count(name)) << name << " is declared under include/ but neither object exports it";
}

// The scan above must not be fooled by the text around a declaration.
TEST(Objects, PrototypeScanSkipsCommentsAndMacros)
{
    std::string text = "/* zel_in_comment(x) */\n"
                        "// zel_in_line_comment(x)\n"
                        "#define ZEL_DECLARE(p) \\\n"
                        "    void zel_in_macro_##p(int); \\\n"
                        "    void zel_in_continuation(int);\n"
                        "  # define ZEL_OTHER zel_in_indented_directive(1)\n"
                        "typedef void (*zel_pointer_type)(int);\n"
                        "ZEL_API int zel_declared(int a, zel_complex8 b);\n"
                        "ZEL_API zel_node *zel_other_declared (void);\n"
                        "ZEL_API void myzel_not_ours(void);\n";
    EXPECT_EQ(declared_functions(declarations_text(text)), std::set<std::string>{"zel_declared"});
}

// Every public header compiles on its own as strict C99 and as C++17.
TEST(Objects, PublicHeadersStandAloneInC99AndCxx17)
{
    const std::string include = source_dir() + "/include";
    for (const auto &header : public_headers()) {
        if (header.extension() != ".h")
            continue;
        std::string name = std::filesystem::relative(header, include).string();
        for (const char *compiler : {"cc -std=c99 -x c", "c++ -std=c++17 -x c++"}) {
            int status = -1;
            std::string command = "printf '#include <" + name + ">\\nint main(void){return 0;}\\n' | " + compiler +
                                  " -Wall -Wextra -pedantic -Werror -fsyntax-only -I" + include + " -I" +
                                  binary_dir() + "/include - 2>&1";
            std::string diagnostics = run(command, &status);
            EXPECT_EQ(status, 0) << name << " with " << compiler << "\n" << diagnostics;
        }
    }
}
