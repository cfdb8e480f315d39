#include "ProgramSupport.h"

#include "Interruption.h"

#include "frame/core/Scheduler.h"
#include "frame/processor/AlgorithmFunctionSelector.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <map>
#include <new>
#include <sstream>
#include <system_error>

namespace orvik::examples {

namespace {

image::eImageBufferType bufferType(SampleType type)
{
    switch (type) {
    case SampleType::UInt8: return image::eIBT_UInt8;
    case SampleType::Int8: return image::eIBT_Int8;
    case SampleType::UInt16: return image::eIBT_UInt16;
    case SampleType::Int16: return image::eIBT_Int16;
    case SampleType::UInt32: return image::eIBT_UInt32;
    case SampleType::Int32: return image::eIBT_Int32;
    case SampleType::Real32: break;
    }
    return image::eIBT_Real32;
}

}  // namespace

imaproc::ConstImagePtr wrapPicture(const Picture& picture)
{
    const void* const samples = picture.samples.data();
    return image::wrapBuffer(samples, bufferType(picture.sampleType), image::ImageSizes(picture.sizeX, picture.sizeY));
}

std::string describe(const Picture& picture)
{
    return std::to_string(picture.sizeX) + " x " + std::to_string(picture.sizeY) + ", " + nameOf(picture.sampleType);
}

std::vector<unsigned char> toMask(const image::BaseImage& binary)
{
    std::vector<unsigned char> mask(binary.getSizeX() * binary.getSizeY() * binary.getSizeZ());
    image::copyOut(binary, mask.data());
    for (unsigned char& pixel : mask)
        pixel = pixel != 0 ? 255 : 0;
    return mask;
}

std::vector<unsigned char> drawOverlay(const Picture& picture, const std::vector<unsigned char>& mask)
{
    std::vector<unsigned char> overlay;
    overlay.reserve(3 * mask.size());
    const std::vector<unsigned char> grey = toDisplay8(picture);
    for (std::size_t i = 0; i < mask.size(); ++i) {
        const unsigned char others = mask[i] != 0 ? 0 : grey[i];
        overlay.insert(overlay.end(), {mask[i] != 0 ? mask[i] : grey[i], others, others});
    }
    return overlay;
}

void makeFolder(const std::string& folder)
{
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        throw std::runtime_error("cannot make the folder '" + folder + "': " + error.message());
}

namespace {

/// The newest set that a kernel needs.
core::eInstructionSet newestSet(const processor::AlgorithmFunctionIdentifier& kernel)
{
    core::eInstructionSet newest = core::eIS_Generic;
    for (std::size_t i = 0; i < kernel.getInstructionSets().getNbSets(); ++i)
        newest = std::max(newest, kernel.getInstructionSets().getSet(i));
    return newest;
}

/// The sets that kernels are written for, of those that this machine runs, by name.
std::map<std::string, core::eInstructionSet> instructionSets()
{
    std::map<std::string, core::eInstructionSet> sets;
    for (const std::string& name : processor::getAlgorithmNames())
        for (const auto& kernel : processor::getAlgorithmEntry(name).selector.getFunctions())
            sets[core::getInstructionSetName(newestSet(kernel))] = newestSet(kernel);
    return sets;
}

std::string checkInstructionSet(const std::string& name)
{
    const std::map<std::string, core::eInstructionSet> sets = instructionSets();
    if (sets.count(name) != 0)
        return std::string();
    std::vector<std::pair<core::eInstructionSet, std::string>> oldestFirst;
    oldestFirst.reserve(sets.size());
    for (const auto& set : sets)
        oldestFirst.emplace_back(set.second, set.first);
    std::sort(oldestFirst.begin(), oldestFirst.end());
    std::string text = "this machine has no kernels for '" + name + "', only for";
    for (const auto& set : oldestFirst)
        text += (&set == &oldestFirst.front() ? " " : ", ") + set.second;
    return text;
}

/// Makes all Level 3 classes run their kernels of that set. A class that has none takes its best one of an older set.
void forceInstructionSet(core::eInstructionSet set)
{
    for (const std::string& name : processor::getAlgorithmNames()) {
        processor::AlgorithmEntry& entry = processor::getAlgorithmEntry(name);
        const processor::AlgorithmFunctionIdentifier* best = nullptr;
        for (const auto& kernel : entry.selector.getFunctions())
            if (newestSet(kernel) <= set && (!best || kernel.getEfficiency() > best->getEfficiency()))
                best = &kernel;
        if (best)
            entry.forcedSets = best->getInstructionSets();
    }
}

int reportFailure(const CLI::App& app, std::string text, int status)
{
    std::replace(text.begin(), text.end(), '\n', ' ');
    std::cerr << app.get_name() << ": " << text << std::endl;
    return status;
}

}  // namespace

void addCommonOptions(CLI::App& app, CommonOptions& options)
{
    addNumber(app, "--threads", options.threads, "threads to use, 1 to 1024 (default: one per processor)",
              isWholeNumberFrom(1, 1024), "N");
    app.add_option("--instruction-set", options.instructionSet,
                   "run the kernels for generic, sse2, avx, avx2 or avx512 (default: the best that the machine has)")
        ->check(CLI::Validator([](std::string& name) { return checkInstructionSet(name); }, std::string()))
        ->type_name("NAME");
    app.add_flag("--quiet", options.quiet, "print nothing but errors");
}

void addPicture(CLI::App& app, std::string& picture)
{
    app.add_option("PICTURE", picture, "file to read; colour is taken as grey")->required()->type_name("");
}

void addPictureOrVolume(CLI::App& app, std::string& file)
{
    app.add_option("FILE", file, "picture or volume to read; colour is taken as grey")->required()->type_name("");
}

void addFolder(CLI::App& app, std::string& folder)
{
    app.add_option("-o,--output", folder, "folder to write to, made if missing (default: the current one)")
        ->type_name("FOLDER");
}

void addChoice(CLI::App& app, const std::string& option, std::string& choice, const std::string& text,
               const std::vector<std::string>& names)
{
    app.add_option(option, choice, text)->check(CLI::IsMember(names))->type_name("NAME");
}

CLI::Validator isNumberFrom(double least, double most)
{
    const auto check = [=](std::string& text) {
        char* end = nullptr;
        const double value = std::strtod(text.c_str(), &end);
        if (end != text.c_str() && *end == '\0' && value >= least && value <= most)
            return std::string();
        std::ostringstream message;
        message << "'" << text << "' is no number ";
        if (most < std::numeric_limits<double>::max())
            message << "from " << least << " to " << most;
        else
            message << "of at least " << least;
        return message.str();
    };
    return CLI::Validator(check, std::string());
}

CLI::Validator isWholeNumberFrom(unsigned long least, unsigned long most)
{
    const auto check = [=](std::string& text) {
        const bool isWhole = !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
        // More digits than the limit has would not fit into the number.
        if (isWhole && text.size() <= std::to_string(most).size() && std::stoul(text) >= least && std::stoul(text) <= most)
            return std::string();
        return "'" + text + "' is no whole number from " + std::to_string(least) + " to " + std::to_string(most);
    };
    return CLI::Validator(check, std::string());
}

int runProgram(CLI::App& app, int argc, char** argv, const CommonOptions& options, const std::function<void()>& work)
{
    try {
        app.parse(argc, argv);
        noteInterruptions();
        core::setNbThreads(options.threads);
        if (!options.instructionSet.empty())
            forceInstructionSet(instructionSets().at(options.instructionSet));
        work();
        std::cout.flush();
        return std::cout ? 0 : reportFailure(app, "cannot print to standard output", 1);
    } catch (const CLI::Success& help) {
        return app.exit(help);
    } catch (const CLI::ParseError& error) {
        return reportFailure(app, std::string(error.what()) + " (--help tells the options)", 2);
    } catch (const Interrupted& interrupted) {
        endByInterruption();
        return reportFailure(app, interrupted.what(), 1);
    } catch (const std::bad_alloc&) {
        return reportFailure(app, "not enough memory", 1);
    } catch (const std::exception& error) {
        return reportFailure(app, error.what(), 1);
    }
}

void runToEnd(processor::BaseProcessor& processor, const std::string& title, const CommonOptions& options)
{
    typedef std::chrono::steady_clock Clock;
    // The next time to show something; the run calls back from one thread at a time.
    Clock::time_point next = Clock::now() + std::chrono::milliseconds(500);
    bool shown = false;
    const bool isTold = !options.quiet && isatty(STDERR_FILENO) != 0;
    processor.setProgressCallback([&](double fraction) {
        throwIfInterrupted();
        if (!isTold || Clock::now() < next)
            return;
        next = Clock::now() + std::chrono::milliseconds(100);
        shown = true;
        std::fprintf(stderr, "\r%s %3.0f %%", title.c_str(), 100.0 * fraction);
    });
    processor.run(core::eST_Synchronous);
    processor.setProgressCallback(nullptr);
    if (shown)
        std::fprintf(stderr, "\r%*s\r", static_cast<int>(title.size()) + 6, "");
    processor.rethrowFailure();
}

std::string lastKernelOf(const std::string& className)
{
    const processor::AlgorithmEntry& entry = processor::getAlgorithmEntry(className);
    for (const auto& kernel : entry.selector.getFunctions())
        if (kernel.getEfficiency() == entry.lastEfficiency) {
            const std::string sets = kernel.getInstructionSets().toString();  // two of a kernel that may use both
            const std::size_t plus = sets.find('+');
            const std::string first = sets.substr(0, plus);
            return plus != std::string::npos && first == sets.substr(plus + 1) ? first : sets;
        }
    return "none";
}

std::string StageTimes::toString() const
{
    std::ostringstream text;
    text << std::fixed << std::setprecision(1);
    for (const auto& stage : m_stages)
        text << (&stage == &m_stages.front() ? "" : ", ") << stage.first << ' '
             << std::chrono::duration<double, std::milli>(stage.second).count() << " ms";
    return text.str();
}

}  // namespace orvik::examples
