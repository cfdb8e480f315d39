// A main for fuzz targets where there is no libFuzzer: inputs that follow from a seed and the number of a run alone, so that
// whatever fails can be run again.

#include <CLI/CLI.hpp>

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Of the sanitizers, when the program is built with them.
extern "C" void __sanitizer_set_death_callback(void (*callback)()) __attribute__((weak));

namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

/// Seconds after which an input is a hang. Far above what one takes on a busy machine under a sanitizer, and below what
/// ctest waits for: only from here is the run told.
constexpr unsigned hangSeconds = 240;

/// splitmix64.
class Random
{
public:
    Random(std::uint64_t seed, std::uint64_t run) : m_state(seed)
    {
        m_state = next() + run;
        m_state = next();
    }

    std::uint64_t next()
    {
        m_state += 0x9E3779B97F4A7C15;
        std::uint64_t z = m_state;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
        return z ^ (z >> 31);
    }

    /// 0 to bound - 1.
    std::size_t below(std::size_t bound) { return next() % bound; }

    std::uint8_t byte() { return static_cast<std::uint8_t>(next() >> 56); }

private:
    std::uint64_t m_state;
};

Bytes readBytes(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    Bytes bytes(std::istreambuf_iterator<char>(file), {});
    if (!file)
        throw std::runtime_error("cannot read '" + path.string() + "'");
    return bytes;
}

/// The files themselves and those of folders, in an order that does not depend on the file system.
std::vector<fs::path> listFiles(const std::vector<std::string>& names)
{
    std::vector<fs::path> files;
    for (const std::string& name : names) {
        if (!fs::is_directory(name)) {
            files.emplace_back(name);
            continue;
        }
        const auto first = static_cast<std::ptrdiff_t>(files.size());
        for (const fs::directory_entry& entry : fs::directory_iterator(name))
            if (entry.is_regular_file())
                files.push_back(entry.path());
        std::sort(files.begin() + first, files.end());
    }
    return files;
}

Bytes randomBytes(Random& random)
{
    Bytes bytes(16 + random.below(4096 - 16 + 1));
    std::generate(bytes.begin(), bytes.end(), [&] { return random.byte(); });
    return bytes;
}

/// Overwrites some bytes by a number at which headers break, in either byte order.
void writeNumber(Bytes& bytes, Random& random)
{
    static const std::uint64_t numbers[] = {0,      1,      2,          3,          4,          5,          8,
                                            16,     0x7F,   0x80,       0xFF,       0x100,      0x7FFF,     0x8000,
                                            0xFFFF, 100000, 0x01000000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFF0, 0xFFFFFFFF};
    const std::uint64_t number = numbers[random.below(std::size(numbers))];
    const std::size_t width = std::min<std::size_t>(std::size_t(1) << random.below(4), bytes.size());
    const std::size_t at = random.below(bytes.size() - width + 1);
    const bool isBigEndian = random.below(2) != 0;
    for (std::size_t i = 0; i < width; ++i)
        bytes[at + (isBigEndian ? width - 1 - i : i)] = static_cast<std::uint8_t>(number >> (8 * i));
}

void mutateOnce(Bytes& bytes, const std::vector<Bytes>& seeds, Random& random)
{
    if (bytes.empty())
        bytes.push_back(random.byte());
    const std::size_t at = random.below(bytes.size());
    const std::size_t count = 1 + random.below(std::min<std::size_t>(bytes.size() - at, 64));
    const auto position = bytes.begin() + static_cast<std::ptrdiff_t>(at);
    const auto end = position + static_cast<std::ptrdiff_t>(count);
    switch (random.below(12)) {
    case 0:
    case 1: bytes[at] ^= static_cast<std::uint8_t>(1U << random.below(8)); break;
    case 2: bytes[at] = random.byte(); break;
    case 3: bytes[at] = static_cast<std::uint8_t>(bytes[at] + random.below(9) - 4); break;
    case 4:
    case 5:
    case 6: writeNumber(bytes, random); break;
    case 7: bytes.erase(position, end); break;
    case 8: {
        const Bytes part(position, end);
        bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(random.below(bytes.size() + 1)), part.begin(), part.end());
        break;
    }
    case 9: {
        const Bytes part(position, end);
        std::copy(part.begin(), part.end(),
                  bytes.begin() + static_cast<std::ptrdiff_t>(random.below(bytes.size() - count + 1)));
        break;
    }
    case 10: bytes.resize(at); break;
    default: {
        // The end of another seed, from the same place on.
        const Bytes& other = seeds[random.below(seeds.size())];
        bytes.resize(at);
        bytes.insert(bytes.end(), other.begin() + static_cast<std::ptrdiff_t>(std::min(at, other.size())), other.end());
    }
    }
}

Bytes makeInput(const std::vector<Bytes>& seeds, std::uint64_t seed, std::uint64_t run)
{
    Random random(seed, run);
    if (seeds.empty())
        return randomBytes(random);
    Bytes bytes = seeds[random.below(seeds.size())];
    for (std::size_t left = 1 + random.below(6); left > 0; --left)
        mutateOnce(bytes, seeds, random);
    return bytes;
}

/// What is told when the input that runs is the last one. Written beforehand: a handler of signals may do little.
char g_lastWords[1024] = {};

void tellInput()
{
    for (const char* text : {"\nfailed: ", static_cast<const char*>(g_lastWords), "\n"})
        if (write(STDERR_FILENO, text, std::char_traits<char>::length(text)) < 0)
            return;
}

void onSignal(int signal)
{
    tellInput();
    if (signal == SIGALRM)
        _exit(1);
    raise(signal);  // the default, once this returns
}

void watchForTheEnd()
{
    static unsigned char stack[65536];  // the usual one may be what has run out
    stack_t other = {};
    other.ss_sp = stack;
    other.ss_size = sizeof stack;
    sigaltstack(&other, nullptr);
    struct sigaction action = {};
    action.sa_handler = onSignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_ONSTACK);
    std::vector<int> signals = {SIGABRT, SIGALRM};
    if (__sanitizer_set_death_callback != nullptr)
        __sanitizer_set_death_callback(tellInput);  // of other signals they tell more than we can
    else
        signals.insert(signals.end(), {SIGSEGV, SIGBUS, SIGFPE, SIGILL});
    for (const int signal : signals)
        sigaction(signal, &action, nullptr);
}

void runInput(const Bytes& bytes, const std::string& name)
{
    std::snprintf(g_lastWords, sizeof g_lastWords, "%s", name.c_str());
    // Memory of exactly that size: sanitizers see what is read beyond it.
    const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
    alarm(hangSeconds);
    LLVMFuzzerTestOneInput(input.data(), input.size());
    alarm(0);
}

struct Options
{
    std::optional<std::uint64_t> runs, only;
    double seconds = std::numeric_limits<double>::infinity();
    std::uint64_t seed = 1;
    std::string seeds;
    std::vector<std::string> files;
};

void runAll(const Options& options)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    const auto secondsGone = [&] { return std::chrono::duration<double>(Clock::now() - start).count(); };
    std::uint64_t runs = 0;
    if (!options.files.empty()) {
        for (const fs::path& file : listFiles(options.files)) {
            runInput(readBytes(file), file.string());
            ++runs;
        }
        std::printf("%llu files, %.1f s\n", static_cast<unsigned long long>(runs), secondsGone());
        return;
    }

    std::vector<Bytes> seeds;
    if (!options.seeds.empty())
        for (const fs::path& file : listFiles({options.seeds}))
            seeds.push_back(readBytes(file));
    const bool isEndless = options.seconds < std::numeric_limits<double>::infinity();
    const std::uint64_t first = options.only.value_or(0);
    const std::uint64_t most = options.only ? 1 : options.runs.value_or(isEndless ? ~std::uint64_t(0) : 10000);
    for (; runs < most && secondsGone() < options.seconds; ++runs) {
        const std::string number = std::to_string(first + runs), seed = std::to_string(options.seed);
        std::string name = "run " + number + " of seed " + seed + "; again by --seed " + seed + " --only " + number;
        if (!options.seeds.empty())
            name += " --seeds " + options.seeds;
        runInput(makeInput(seeds, options.seed, first + runs), name);
    }
    std::printf("%llu runs of seed %llu, %.1f s\n", static_cast<unsigned long long>(runs),
                static_cast<unsigned long long>(options.seed), secondsGone());
}

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): a fuzz target may end by what it throws
int main(int argc, char** argv)
{
    CLI::App app("Runs a fuzz target: on files, or on inputs made from a seed.");
    Options options;
    app.add_option("--runs", options.runs, "inputs to make (default: 10000, or any number with --seconds)")->type_name("N");
    app.add_option("--seconds", options.seconds, "make no more inputs after this time")->type_name("T");
    app.add_option("--seed", options.seed, "of all that is random (default: 1)")->type_name("S");
    app.add_option("--only", options.only, "make the input of this run alone")->type_name("N");
    app.add_option("--seeds", options.seeds, "folder of files to change; without it all bytes are random")
        ->check(CLI::ExistingDirectory)
        ->type_name("FOLDER");
    app.add_option("FILES", options.files, "files, or folders of files, to run as they are")
        ->check(CLI::ExistingPath)
        ->type_name("");
    CLI11_PARSE(app, argc, argv);
    watchForTheEnd();
    runAll(options);
}
