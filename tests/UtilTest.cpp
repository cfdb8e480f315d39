// Limits, catalogues of texts, loggers and the throw site.

#include "ORVIKIPLFeatureDetectionLogMessages.h"
#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl1.h"
#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl3.h"
#include "TestRuns.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/ClassStatics.h"
#include "frame/util/FrameMessages.h"
#include "frame/util/NumericLimits.h"

#include <boost/format/exceptions.hpp>
#include <log4cplus/appender.h>
#include <log4cplus/logger.h>
#include <log4cplus/spi/loggingevent.h>

#include <cmath>
#include <cstdlib>
#include <stdexcept>

#include <unistd.h>

namespace orvik::test { namespace {

namespace fd = imaproc::fd;

/// Keeps what is logged on a logger while this object lives; may be told to fail instead.
class Listener
{
public:
    struct Appender : log4cplus::Appender
    {
        ~Appender() override { destructorImpl(); }
        void close() override {}
        void append(const log4cplus::spi::InternalLoggingEvent& event) override
        {
            if (fails)
                throw std::runtime_error("no room for the log");
            events.push_back(event);
        }
        bool fails = false;
        std::vector<log4cplus::spi::InternalLoggingEvent> events;
    };

    explicit Listener(log4cplus::Logger logger) : m_logger(logger), m_appender(new Appender), m_shared(m_appender)
    {
        m_logger.addAppender(m_shared);
    }
    ~Listener() { m_logger.removeAppender(m_shared); }
    Appender* operator->() { return m_appender; }

private:
    log4cplus::Logger m_logger;
    Appender* m_appender;
    log4cplus::SharedAppenderPtr m_shared;
};

// --- catalogues

TEST(Messages, AllHaveTheirRowsWithBlanksAndSpelling)
{
    const LogMessageManager& manager = fd::getORVIKIPLFeatureDetectionLogMessageManager();
    EXPECT_EQ(&LogMessageManager::getInstance("ORVIKIPLFeatureDetection"), &manager);
    const std::string rowsOfProcessors = "N5orvik7imaproc2fd17eProcessorMessage6domainE";
    EXPECT_EQ(rowsOfProcessors, typeid(fd::eProcessorMessage::domain).name());
    EXPECT_EQ(78u, manager.getNbMessages(rowsOfProcessors));
    EXPECT_EQ(5u, manager.getNbMessages("N5orvik7imaproc2fd12eRuleMessage6domainE"));
    EXPECT_EQ(1u, manager.getNbMessages("N5orvik7imaproc2fd25eOutputInitializerMessage6domainE"));
    EXPECT_EQ(0u, manager.getNbMessages(typeid(fd::eORVIKIPLFeatureDetectionMessage::domain).name()));
    const auto row = [&](int id) { return manager.getMessage(rowsOfProcessors, id); };
    EXPECT_EQ("Level 1 algorithm: detects edges in images using Canny's detector", row(0));
    EXPECT_EQ("Level 2 algorithm: computes spheres radii, given sphere centers and an image of gradient magnitude  on Gpu",
              row(9));
    EXPECT_EQ("Level 1 algorithm: Creates a mask image from 3D spheres detected with te 3D Hough detection algorithm",
              row(72));
    EXPECT_EQ(row(77), fd::MaxL2Norm2MsrLvl3().getToolTip());
}

TEST(Formatter, FillsFieldsInOrderAndForgetsThemWithTheRow)
{
    LogMessageFormater formater(fd::getORVIKIPLFeatureDetectionLogMessageManager());
    formater[fd::eRuleMessage::eSizeYGreaterOrEqualEvaluated] % 7u % std::string("InHoughLinesParams") % 180u;
    EXPECT_EQ("Output image Y size (7) is greater than or equals to NbThetaBins field of InHoughLinesParams data item (180)",
              formater.string());
    EXPECT_EQ("Attribute weak pointer has expired, can't get it",
              formater.setMsgId("N5orvik7imaproc2fd12eRuleMessage6domainE", 0).string());
    EXPECT_THROW(formater.setMsgId("N5orvik7imaproc2fd12eRuleMessage6domainE", 5), std::out_of_range);
    formater[fd::eRuleMessage::eSizeYGreaterOrEqual];
    EXPECT_THROW(formater.string(), boost::io::too_few_args);
    formater % 1u % 2u;
    EXPECT_THROW(formater.string(), boost::io::too_many_args);
}

// --- loggers and the throw site

TEST(Loggers, LieBelowTheBaseLogger)
{
    std::string names;
    for (const auto& logger :
         {getBaseLogger(), getORVIKUtilLogger(), getORVIKSerializationLogger(), processor::getORVIKBaseProcessingLogger(),
          imaproc::getORVIKImageProcessingLogger(), fd::getORVIKIPLFeatureDetectionLogger()})
        names += logger.getName().substr(std::string(getBaseLoggerName()).size());
    EXPECT_EQ(".ORVIKUtil.ORVIKSerialization.ORVIKBaseProcessing.ORVIKImageProcessing.ORVIKIPLFeatureDetection", names);
    EXPECT_EQ(fd::getORVIKIPLFeatureDetectionLoggerName(), fd::getORVIKIPLFeatureDetectionLogger().getName());
}

void throwCopyRefused(const std::string& name)
{
    ORVIK_THROW(ORVIKUtilException, g_utilLogSource, eORVIKUtilErrors::eCopyNotSupported, name);
}

TEST(ThrowSite, LogsAtErrorWithThePlaceAndThrowsTheSameText)
{
    Listener listener(getORVIKUtilLogger());
    try {
        throwCopyRefused("Thing");
        FAIL() << "nothing was thrown";
    } catch (const ORVIKUtilException& e) {
        EXPECT_STREQ("Objects of class Thing can't be copied", e.what());
        EXPECT_NE(std::string::npos, e.getFunction().find("::throwCopyRefused(const std::string&)")) << e.getFunction();
        EXPECT_NE(std::string::npos, e.getFile().find("UtilTest.cpp"));
        EXPECT_GT(e.getLine(), 0u);
        EXPECT_EQ("", e.getCause());
    }
    ASSERT_EQ(1u, listener->events.size());
    EXPECT_EQ("Objects of class Thing can't be copied", listener->events[0].getMessage());
    EXPECT_EQ(40000, listener->events[0].getLogLevel());
    EXPECT_NE(std::string::npos, listener->events[0].getFile().find("UtilTest.cpp"));
}

TEST(ThrowSite, ThrowsTheSameTextWhileErrorsAreNotLogged)
{
    Listener listener(getORVIKUtilLogger());
    getORVIKUtilLogger().setLogLevel(log4cplus::OFF_LOG_LEVEL);
    const std::string text = thrownText<ORVIKUtilException>([] { throwCopyRefused("Thing"); });
    getORVIKUtilLogger().setLogLevel(log4cplus::NOT_SET_LOG_LEVEL);
    EXPECT_EQ("Objects of class Thing can't be copied", text);
    EXPECT_TRUE(listener->events.empty());
}

/// Ends the process by 7 where what is thrown after the frame's part of the end, being registered before that, is not logged.
[[noreturn]] void endAndFail()
{
    static Listener& listener = *new Listener(getORVIKUtilLogger());
    std::atexit([] {
        const std::string text = thrownText<ORVIKUtilException>([] { throwCopyRefused("Thing"); });
        _exit(listener->events.size() == 1 && text == "Objects of class Thing can't be copied" ? 7 : 8);
    });
    thrownText<ORVIKUtilException>([] { throwCopyRefused("Thing"); });
    std::exit(1);
}

TEST(ThrowSite, LogsNoMoreOnceTheProcessEnds)
{
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(endAndFail(), ::testing::ExitedWithCode(7), "");
}

/// A throw site whose catalogue fails to be had.
template<class Failure>
BaseException failedThrowSite(Failure fail)
{
    static Failure* current;
    current = &fail;
    const LogSource source = {&getORVIKUtilLogger, []() -> LogMessageManager& {
                                  (*current)();
                                  return getORVIKUtilLogMessageManager();
                              }};
    try {
        ORVIK_THROW(ORVIKUtilException, source, eORVIKUtilErrors::eCopyNotSupported, "Thing");
    } catch (const BaseException& e) {
        EXPECT_EQ(std::string(typeid(BaseException).name()), typeid(e).name());
        return e;
    }
}

TEST(ThrowSite, AFailureInsideItIsLoggedOnTheBaseLoggerAndBecomesTheCause)
{
    Listener listener(getBaseLogger());
    const std::string text = "Exception thrown while processing message";
    EXPECT_EQ("standard", failedThrowSite([] { throw std::runtime_error("standard"); }).getCause());
    EXPECT_EQ("own", failedThrowSite([] { throw BaseException("own", "f", "g", 1); }).getCause());
    EXPECT_EQ(UnHandleException().what(), failedThrowSite([] { throw 7; }).getCause());
    ASSERT_EQ(3u, listener->events.size());
    for (const auto& logged : listener->events)
        EXPECT_EQ(0u, logged.getMessage().find(text + " in ")) << logged.getMessage();

    // Arguments that do not fit their message are such a failure, too.
    EXPECT_EQ(text, thrownText<BaseException>([] {
                  ORVIK_THROW(ORVIKUtilException, g_utilLogSource, eORVIKUtilErrors::eCopyNotSupported, "a", "b");
              }));
}

TEST(ThrowSite, ALogThatCanNotBeWrittenIsAFailureInsideIt)
{
    Listener listener(getBaseLogger());
    listener->fails = true;
    EXPECT_EQ("Exception thrown while processing message", thrownText<BaseException>([] { throwCopyRefused("Thing"); }));
}

}  // namespace
}  // namespace orvik::test
