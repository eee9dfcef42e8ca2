#include <gtest/gtest.h>

#include <sstream>

#include <Korvo/Plexis/Tessel/Logging/Loggers.h>
#include <Korvo/Plexis/Tessel/Logging/StandardErrorLoggerFactory.h>

#include "logging/LogText.h"
#include "support/RecordingLogger.h"

namespace {

using Korvo::Plexis::Tessel::Logging::ILogger;
using Korvo::Plexis::Tessel::Logging::Loggers;
using Korvo::Plexis::Tessel::Logging::StandardErrorLoggerFactory;
using Korvo::Testing::RecordingLogger;
using Korvo::Testing::RecordingLoggerFactory;

// A fresh registry per test; the program's single instance is left alone.
class FreshLoggers : public Loggers {
public:
    FreshLoggers() = default;
};

TEST(Loggers, WithoutFactoryEveryLoggerIsEmptyAndNothingIsKept) {
    FreshLoggers registry;
    EXPECT_EQ(registry.GetLoggingLevel(), 40);
    EXPECT_EQ(registry.GetLogger("CommandClient"), nullptr);
    EXPECT_EQ(registry.GetLogger("CommandClient"), nullptr);

    // Had the empty answers been stored, the factory would not be asked now.
    auto factory = std::make_unique<RecordingLoggerFactory>();
    auto* counting = factory.get();
    registry.SetLoggerFactory(std::move(factory));
    EXPECT_NE(registry.GetLogger("CommandClient"), nullptr);
    EXPECT_EQ(counting->created, 1);
}

TEST(Loggers, ALoggerIsMadeOncePerNameAndOutlivesAReplacedFactory) {
    FreshLoggers registry;
    auto factory = std::make_unique<RecordingLoggerFactory>();
    auto* first = factory.get();
    registry.SetLoggerFactory(std::move(factory));
    auto kept = registry.GetLogger("CommandClient");
    EXPECT_EQ(registry.GetLogger("CommandClient"), kept);
    EXPECT_NE(registry.GetLogger("NotificationClient"), kept);
    EXPECT_EQ(first->created, 2);

    factory = std::make_unique<RecordingLoggerFactory>();
    auto* second = factory.get();
    registry.SetLoggerFactory(std::move(factory));
    EXPECT_EQ(registry.GetLogger("CommandClient"), kept);
    EXPECT_EQ(second->created, 0);
    registry.GetLogger("Simulator");
    EXPECT_EQ(second->created, 1);
}

TEST(Loggers, LevelReachesLoggersMadeBeforeAndAfter) {
    FreshLoggers registry;
    registry.SetLoggerFactory(std::make_unique<RecordingLoggerFactory>());
    auto before = registry.GetLogger("before");
    EXPECT_EQ(before->GetLevel(), 40);

    registry.SetLoggingLevel(ILogger::Fatal);
    EXPECT_EQ(registry.GetLoggingLevel(), 60);
    EXPECT_EQ(before->GetLevel(), 60);
    EXPECT_EQ(registry.GetLogger("after")->GetLevel(), 60);

    // A logger's own level change is not undone by asking for it again.
    before->SetLevel(ILogger::Trace);
    EXPECT_EQ(registry.GetLogger("before")->GetLevel(), 10);
    registry.UpdateLoggersLevel();
    EXPECT_EQ(before->GetLevel(), 60);
}

TEST(StandardErrorLoggerFactory, LineCarriesTimeLevelNameTextAndSource) {
    EXPECT_EQ(StandardErrorLoggerFactory::FormatLine(
                  "2026-11-21T05:53:33.123Z", ILogger::Warning, "CommandClient", "Stop called.",
                  "Korvo/Plexis/Tessel/Client/CommandClient", 42),
              "2026-11-21T05:53:33.123Z WARNING CommandClient: Stop called. "
              "(Korvo/Plexis/Tessel/Client/CommandClient:42)\n");
    EXPECT_EQ(StandardErrorLoggerFactory::LevelName(ILogger::Fatal), "FATAL");
    EXPECT_EQ(StandardErrorLoggerFactory::LevelName(static_cast<ILogger::Level>(45)), "45");
}

TEST(StandardErrorLoggerFactory, WritesOnlyAtOrAboveItsLevel) {
    StandardErrorLoggerFactory factory;
    auto logger = factory.CreateLogger("CommandClient");
    logger->SetLevel(ILogger::Error);
    testing::internal::CaptureStderr();
    logger->Log(ILogger::Warning, "hidden", "file", 1);
    logger->Log(ILogger::Error, std::string("shown"), "file", 2);
    const std::string written = testing::internal::GetCapturedStderr();
    EXPECT_EQ(written.find("hidden"), std::string::npos);
    EXPECT_NE(written.find(" ERROR CommandClient: shown (file:2)\n"), std::string::npos);
}

TEST(LogText, NetworkTextCannotBreakALineOrGrowWithoutBound) {
    const struct {
        std::string text;
        std::string logged;
    } cases[] = {
        {"PlayerStateChanged", "PlayerStateChanged"},
        {"forged\n[50] line", "forged\\x0a[50] line"},
        {"\x1b[2Jcleared", "\\x1b[2Jcleared"},
        {std::string("nul\0byte", 8), "nul\\x00byte"},
        {"back\\slash \xC3\xA9", "back\\x5cslash \\xc3\\xa9"},
        {std::string(300, 'x'), std::string(128, 'x') + "...(300 bytes)"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Korvo::Plexis::Tessel::Logging::Printable(c.text), c.logged);
    }
}

}  // namespace
