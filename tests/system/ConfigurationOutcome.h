#pragma once
// What a configuration file led to.

#include "tests/system/SystemTest.h"

#include <ctime>
#include <initializer_list>

namespace Orvi::Testing {

enum class Started { Nothing, File, Ring };

/// A configuration and what it must start. "@" in texts is the folder for logs.
struct ConfigurationRow {
    const char *text;
    Started started;
    uint32_t level = 0;
    const char *folder = nullptr; ///< of the log file, or of the dump that the end of the library writes
};

class ConfigurationOutcome : public SystemTest {
  protected:
    ConfigurationOutcome() : zone_("TZ", "UTC0")
    {
        tzset();
        calls->time = [] { return time_t{981173106}; };
    }
    ~ConfigurationOutcome() override { systemCalls = {}; }

    static constexpr const char *fileName = "OrviCamApi_20010203_040506.txt";

    static Started WhatIsUp()
    {
        if (!g_bUniLogInit)
            return Started::Nothing;
        return Log_MemFlush() == 0 ? Started::Ring : Started::File;
    }

    /// Runs the library once with the row's configuration.
    void Expect(const ConfigurationRow &row)
    {
        SCOPED_TRACE(row.text);
        Configure(row.text);
        ExpectWritten(row);
        std::filesystem::remove(ConfigurationFile());
    }

    void ExpectAll(std::initializer_list<ConfigurationRow> rows)
    {
        for (const ConfigurationRow &row : rows)
            Expect(row);
    }

    void ExpectNothing(std::initializer_list<const char *> texts)
    {
        for (const char *text : texts)
            Expect({text, Started::Nothing});
    }

    /// The same with the file as it is.
    void ExpectWritten(const ConfigurationRow &row)
    {
        EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
        EXPECT_EQ(WhatIsUp(), row.started);
        if (row.started != Started::Nothing) {
            EXPECT_EQ(Uni_GetLogLevel(), row.level);
        }
        EXPECT_EQ(Sys_Terminate(), 0u);
        EXPECT_FALSE(g_bUniLogInit);
        const std::filesystem::path file =
            row.folder == nullptr ? Logs() : std::filesystem::path(WithFolder(row.folder)) / fileName;
        EXPECT_EQ(std::filesystem::is_regular_file(file), row.folder != nullptr) << file;
        std::filesystem::remove_all(Logs());
        std::filesystem::create_directory(Logs());
    }

  private:
    ScopedVariable zone_;
};

} // namespace Orvi::Testing
