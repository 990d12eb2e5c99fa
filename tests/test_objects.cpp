// The shipped objects: exported names, dependencies, and the README's C example.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>

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

TEST(Objects, PublicHeadersCompileAsCxx)
{
    int status = -1;
    std::string command = "printf '#include <zel.h>\\nint main(){return 0;}\\n' | c++ -std=c++17 -Wall -Werror -x c++ "
                          "-fsyntax-only -I" + source_dir() + "/include - 2>&1";
    std::string diagnostics = run(command, &status);
    EXPECT_EQ(status, 0) << diagnostics;
}
