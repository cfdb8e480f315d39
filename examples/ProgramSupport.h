#pragma once

// What the example programs share: pictures as images of the library, options, running, timing, overlays.

#include "PictureIo.h"

#include "frame/attr/Declarations.h"
#include "frame/image/BaseImage.h"
#include "frame/processor/BaseProcessor.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <functional>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace orvik::examples {

/// An image on the samples of a picture, without copying: the picture has to outlive it.
imaproc::ConstImagePtr wrapPicture(const Picture& picture);

/// "384 x 303, 8 bit unsigned".
std::string describe(const Picture& picture);

/// 255 where an image of one plane or volume, with one byte per sample, is not 0; rows without padding.
std::vector<unsigned char> toMask(const image::BaseImage& binary);

/// The picture in grey with the pixels of a mask in red, three bytes per pixel.
std::vector<unsigned char> drawOverlay(const Picture& picture, const std::vector<unsigned char>& mask);

/// Makes a folder with those above it, unless it is there already.
void makeFolder(const std::string& folder);

/// Options that every program has.
struct CommonOptions
{
    unsigned int threads = 0;    ///< 0 for the library's own choice
    std::string instructionSet;  ///< empty for the library's own choice
    bool quiet = false;
};

void addCommonOptions(CLI::App& app, CommonOptions& options);

/// What every program reads, its first argument, and the folder that it writes to.
void addPicture(CLI::App& app, std::string& picture);
void addPictureOrVolume(CLI::App& app, std::string& file);
void addFolder(CLI::App& app, std::string& folder);

/// An option that takes one of these names.
void addChoice(CLI::App& app, const std::string& option, std::string& choice, const std::string& text,
               const std::vector<std::string>& names);

/// An option that takes a number, which `check` accepts, of that unit.
template<class Number>
void addNumber(CLI::App& app, const std::string& option, Number& number, const std::string& text, CLI::Validator check,
               const std::string& unit)
{
    app.add_option(option, number, text)->check(std::move(check))->type_name(unit);
}

/// Accepts numbers within the limits; no NaN and no infinities.
CLI::Validator isNumberFrom(double least, double most = std::numeric_limits<double>::max());

/// Accepts whole numbers within the limits.
CLI::Validator isWholeNumberFrom(unsigned long least, unsigned long most);

/// Parses the command line, does what the common options ask for, then the work. Any failure becomes one line on
/// stderr that starts with the program's name. Returns the exit status: 0, 1 for failed work, 2 for a wrong command
/// line. Ctrl-C ends the process once its files are cleared away.
int runProgram(CLI::App& app, int argc, char** argv, const CommonOptions& options, const std::function<void()>& work);

/// Runs a processor of the library to its end. On a terminal, progress is shown once that takes longer than half a
/// second. Throws what ended the run when it failed, and Interrupted after Ctrl-C.
void runToEnd(processor::BaseProcessor& processor, const std::string& title, const CommonOptions& options);

/// The instruction set of the kernel that a Level 3 class has run last.
std::string lastKernelOf(const std::string& className);

/// How long the stages of a program take.
class StageTimes
{
public:
    /// Does the work and adds its time under that name.
    template<class Work>
    auto measure(const std::string& stage, Work&& work)
    {
        const Watch watch{*this, stage};
        return work();
    }

    /// "read 2.1 ms, edges 3.4 ms".
    std::string toString() const;

private:
    typedef std::chrono::steady_clock Clock;

    /// Adds the time at the end of its life, so that work may return anything, or nothing.
    struct Watch
    {
        ~Watch() { times.m_stages.emplace_back(stage, Clock::now() - start); }

        StageTimes& times;
        std::string stage;
        Clock::time_point start = Clock::now();
    };

    std::vector<std::pair<std::string, Clock::duration>> m_stages;
};

}  // namespace orvik::examples
