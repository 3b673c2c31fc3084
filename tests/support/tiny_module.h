// A tracker module (XM) of one pattern and one note, built byte by byte: as short as a test needs
// it, and with or without the jump that makes it endless.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

class TinyModule {
public:
    static constexpr int rows = 8;
    static constexpr int milliseconds = rows * 10; // a row of one tick, 250 beats a minute

    enum Ending { runsOff, jumpsBack };

    explicit TinyModule(Ending ending) {
        addHeader();
        addPattern(ending);
        addInstrument();
    }

    const void* data() const { return bytes.data(); }
    int32_t size() const { return static_cast<int32_t>(bytes.size()); }

private:
    void add(uint32_t value, int size) {
        for (int at = 0; at < size; ++at)
            bytes.push_back(static_cast<uint8_t>(value >> 8 * at));
    }
    void addText(std::string text, size_t size) {
        text.resize(size);
        bytes.insert(bytes.end(), text.begin(), text.end());
    }
    void addZeros(size_t count) { bytes.resize(bytes.size() + count); }

    void addHeader() {
        addText("Extended Module: ", 17);
        addText("tiny", 20);
        add(0x1A, 1);
        addText("test", 20);
        add(0x0104, 2);
        add(276, 4); // this header from here on
        for (const uint32_t value : {1, 0, 2, 1, 1, 0, 1, 250})
            add(value, 2); // orders, restart, channels, patterns, instruments, flags, ticks, beats
        addZeros(256);     // the one order is pattern 0
    }

    void addPattern(Ending ending) {
        add(9, 4);
        add(0, 1);
        add(rows, 2);
        add(rows * 2 * 5, 2);
        for (int row = 0; row < rows; ++row) {
            const bool jumps = ending == jumpsBack && row == rows - 1;
            addCell(row == 0 ? 49 : 0, jumps ? 0x0B : 0);
            addCell(0, 0);
        }
    }

    void addCell(uint32_t note, uint32_t effect) {
        for (const uint32_t value : {note, note ? 1u : 0u, 0u, effect, 0u})
            add(value, 1);
    }

    // A square wave of 32 bytes that sounds until the song ends.
    void addInstrument() {
        add(263, 4);
        addText("square", 22);
        add(0, 1);
        add(1, 2);
        add(40, 4);
        addZeros(263 - 33);
        for (const uint32_t value : {32, 0, 32})
            add(value, 4); // length, loop
        for (const uint32_t value : {64, 0, 1, 128, 0, 0})
            add(value, 1); // volume, tuning, forward loop, centre, note
        addText("square", 22);
        for (int at = 0; at < 32; ++at)
            add(at == 0 ? 100u : at == 16 ? 56u : 0u, 1); // differences: up to 100, down to -100
    }

    std::vector<uint8_t> bytes;
};
