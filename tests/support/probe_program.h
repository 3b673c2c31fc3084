// The test program as its own child. A process that a test starts while a Probe lives is this very
// program again, but instead of running tests it tells how it was started, does what the Probe
// asked for, and ends with Probe::exitCode. It is told so by the environment, which every child
// has from its parent: its command line stays the business of the code under test.
#pragma once

#include "tests/support/wait_until.h"

#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

// How a probe was started, in its own words.
struct ProbeReport {
    std::string program; // its path
    std::string commandLine;
    std::string folder;
    DWORD processId = 0;
    DWORD show = 0;         // wShowWindow
    DWORD startupFlags = 0; // dwFlags
    std::string heard;      // all that came by its standard input, if it was to listen
};

class Probe {
public:
    static constexpr DWORD exitCode = 7;

    // `acts` are words: "speak" writes "spoken" to the standard output and "complained" to the
    // standard error, "listen" reads the standard input to its end, "hold" stays until letGo().
    explicit Probe(const char* acts = "") {
        go = CreateEventA(nullptr, TRUE, FALSE, goName().c_str());
        DeleteFileA(path().c_str());
        SetEnvironmentVariableA(pathVariable, path().c_str());
        SetEnvironmentVariableA(actsVariable, acts);
    }
    ~Probe() {
        letGo();
        SetEnvironmentVariableA(pathVariable, nullptr);
        DeleteFileA(path().c_str());
        CloseHandle(go);
    }
    Probe(const Probe&) = delete;
    Probe& operator=(const Probe&) = delete;

    void letGo() { SetEvent(go); }

    bool hasReported() const {
        return GetFileAttributesA(path().c_str()) != INVALID_FILE_ATTRIBUTES;
    }

    // Waits for the report.
    ProbeReport report() const {
        const QuietScope quiet;
        EXPECT_TRUE(waitUntil([this] { return hasReported(); })) << "no probe has reported";
        return read();
    }

    static std::string ownPath() {
        char text[MAX_PATH];
        GetModuleFileNameA(nullptr, text, sizeof text);
        return text;
    }

    // For the start of the program: does not come back if this process is a probe.
    static bool actIfProbe() {
        char text[MAX_PATH];
        if (GetEnvironmentVariableA(pathVariable, text, sizeof text) == 0)
            return false;
        act(text);
        ExitProcess(exitCode);
    }

private:
    static constexpr const char* pathVariable = "PROBE_REPORT";
    static constexpr const char* actsVariable = "PROBE_ACTS";

    static std::string path() {
        char folder[MAX_PATH];
        GetTempPathA(sizeof folder, folder);
        return folder + ("probe" + std::to_string(GetCurrentProcessId()) + ".txt");
    }
    static std::string goName() { return "probe go " + std::to_string(GetCurrentProcessId()); }

    static void act(const std::string& reportPath) {
        char words[64] = "";
        GetEnvironmentVariableA(actsVariable, words, sizeof words);
        const std::string acts = words;
        const std::string heard = acts.find("listen") == std::string::npos ? "" : listen();
        if (acts.find("speak") != std::string::npos) {
            say(STD_OUTPUT_HANDLE, "spoken");
            say(STD_ERROR_HANDLE, "complained");
        }
        tell(reportPath, heard);
        if (acts.find("hold") != std::string::npos)
            hold(reportPath);
    }

    static void say(DWORD where, const std::string& text) {
        DWORD written;
        WriteFile(GetStdHandle(where), text.data(), static_cast<DWORD>(text.size()), &written,
                  nullptr);
    }

    static std::string listen() {
        std::string heard;
        char letter;
        DWORD count = 0;
        while (ReadFile(GetStdHandle(STD_INPUT_HANDLE), &letter, 1, &count, nullptr) && count == 1)
            heard += letter;
        return heard;
    }

    // The report appears as a whole: it is written under another name.
    static void tell(const std::string& reportPath, const std::string& heard) {
        char folder[MAX_PATH];
        GetCurrentDirectoryA(sizeof folder, folder);
        STARTUPINFOA startup;
        GetStartupInfoA(&startup);
        const std::string unfinished = reportPath + ".unfinished";
        FILE* file = fopen(unfinished.c_str(), "wb");
        fprintf(file, "%s\n%s\n%s\n%lu %u %lu\n%s", ownPath().c_str(), GetCommandLineA(), folder,
                GetCurrentProcessId(), startup.wShowWindow, startup.dwFlags, heard.c_str());
        fclose(file);
        MoveFileA(unfinished.c_str(), reportPath.c_str());
    }

    // The parent's number is in the report's name, and so in the event's.
    static void hold(const std::string& reportPath) {
        const size_t number = reportPath.rfind("probe") + 5;
        const std::string name = "probe go " + std::to_string(atoi(&reportPath[number]));
        HANDLE event = OpenEventA(SYNCHRONIZE, FALSE, name.c_str());
        WaitForSingleObject(event, 20000);
    }

    static ProbeReport read() {
        std::string text;
        FILE* file = fopen(path().c_str(), "rb");
        for (int letter = fgetc(file); letter != EOF; letter = fgetc(file))
            text += static_cast<char>(letter);
        fclose(file);
        std::istringstream lines(text);
        ProbeReport report;
        std::getline(lines, report.program);
        std::getline(lines, report.commandLine);
        std::getline(lines, report.folder);
        lines >> report.processId >> report.show >> report.startupFlags;
        lines.ignore();
        std::getline(lines, report.heard, '\0');
        return report;
    }

    HANDLE go; // an event
};

// A program whose tests use probes takes this header; it is asked before any test runs.
inline const bool isProbeProcess = Probe::actIfProbe();
