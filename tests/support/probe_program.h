// The test program as its own child. A process that a test starts while a Probe lives is this very
// program again, but instead of running tests it tells how it was started, does what the Probe
// asked for, and ends with Probe::exitCode. It is told so by the environment, which every child
// has from its parent: its command line stays the business of the code under test.
#pragma once

#include "tests/support/wait_until.h"

#include <cstdio>
#include <share.h>
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
    explicit Probe(const char* acts = "")
        : path(newPath()), go(CreateEventA(nullptr, TRUE, FALSE, eventName(path).c_str())) {
        SetEnvironmentVariableA(pathVariable, path.c_str());
        SetEnvironmentVariableA(actsVariable, acts);
    }
    ~Probe() {
        letGo();
        SetEnvironmentVariableA(pathVariable, nullptr);
        DeleteFileA(path.c_str());
        CloseHandle(go);
    }
    Probe(const Probe&) = delete;
    Probe& operator=(const Probe&) = delete;

    void letGo() { SetEvent(go); }

    // Waits for the report.
    ProbeReport report() const {
        const QuietScope quiet;
        FILE* file = nullptr;
        EXPECT_TRUE(waitUntil([&] { return (file = fopen(path.c_str(), "rb")) != nullptr; }))
            << "no probe has reported";
        return file ? read(file) : ProbeReport();
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

    // One that no child of an earlier probe writes to.
    static std::string newPath() {
        char folder[MAX_PATH];
        GetTempPathA(sizeof folder, folder);
        LARGE_INTEGER now;
        QueryPerformanceCounter(&now);
        return folder + ("probe" + std::to_string(GetCurrentProcessId()) + "." +
                         std::to_string(now.QuadPart) + ".txt");
    }
    static std::string eventName(const std::string& reportPath) {
        return "go " + reportPath.substr(reportPath.rfind('\\') + 1);
    }

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

    // Nobody can open the report before it is whole, and of two children at once one tells.
    static void tell(const std::string& reportPath, const std::string& heard) {
        char folder[MAX_PATH];
        GetCurrentDirectoryA(sizeof folder, folder);
        STARTUPINFOA startup;
        GetStartupInfoA(&startup);
        FILE* file = _fsopen(reportPath.c_str(), "wb", _SH_DENYRW);
        if (!file)
            return;
        fprintf(file, "%s\n%s\n%s\n%lu %u %lu\n%s", ownPath().c_str(), GetCommandLineA(), folder,
                GetCurrentProcessId(), startup.wShowWindow, startup.dwFlags, heard.c_str());
        fclose(file);
    }

    static void hold(const std::string& reportPath) {
        HANDLE event = OpenEventA(SYNCHRONIZE, FALSE, eventName(reportPath).c_str());
        WaitForSingleObject(event, 20000);
    }

    static ProbeReport read(FILE* file) {
        std::string text;
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

    const std::string path; // of the report
    const HANDLE go;        // an event
};

// A program whose tests use probes takes this header; it is asked before any test runs.
inline const bool isProbeProcess = Probe::actIfProbe();
