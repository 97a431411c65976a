// The console on a demonstration host that the tool made, beside the services' real programs.
#pragma once

#include <gtest/gtest.h>

#include <QAction>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "app/mdlMain.h"
#include "platform/services/serviceManager.h"
#include "server/serviceControl.h"
#include "support/person.h"
#include "support/scriptedPrompts.h"
#include "support/serviceHost.h"
#include "ui/shell/frmMain.h"

namespace support {

using Lines = std::vector<std::string>;

class Demonstration : public ::testing::Test {
  protected:
    // The service runs when the console comes; the options are those of the tool's command create.
    explicit Demonstration(const std::string& options = "--empty --subscribers 5") {
        qlnhost("create " + host.root().string() + " " + options);
        host.setRegistry("SOFTWARE\\Tessaly\\ToolRack\\Diagnostic Tools\\Quillon Service",
                         "ServicePollingPause", 2u);
        if (platform::queryServiceStatus("HbQlnSvc").state == platform::ServiceState::stopped) {
            EXPECT_EQ(qlnhost("services start HbQlnSvc"), "");
        }
        mdlMain::Main(station);
    }
    // What runs is told to stop, as anybody would.
    ~Demonstration() override {
        delete gMainWindow;
        for (const std::string& name : platform::serviceNames())
            mdlUtility::myStopService(name);
    }

    std::string qlnhost(const std::string& arguments) {
        const std::string command =
            std::string(QLNHOST_PROGRAM) + " --host " + host.root().string() + " " + arguments + " 2>&1";
        FILE* pipe = popen(command.c_str(), "r");
        std::string text;
        std::array<char, 4096> piece{};
        while (const std::size_t size = fread(piece.data(), 1, piece.size(), pipe))
            text.append(piece.data(), size);
        EXPECT_EQ(pclose(pipe), 0) << text;
        return text;
    }
    void choose(const char* entry) { person::chooseMenu(*gMainWindow, entry); }
    void expectQuestion(const std::string& text, const std::string& title, platform::BoxAnswer answer) {
        prompts.expect({text, title, platform::BoxIcon::question, platform::BoxButtons::yesNo}, answer);
    }
    Lines rows(const std::string& statement) { return query(host.databaseFile(), statement); }
    static Lines linesOf(const std::filesystem::path& file) {
        Lines lines;
        std::ifstream stream(file);
        for (std::string line; std::getline(stream, line);)
            lines.push_back(line.substr(line.find("  ") + 2));
        return lines;
    }

    TemporaryHost host;
    FastClock clock;
    ScriptedPrompts prompts;
    platform::WindowStation station{"QLNAdmin"};
};

}  // namespace support
