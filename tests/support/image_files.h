// Whole BMP and ICO files for tests, built byte by byte.
#pragma once

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <vector>

class FileBytes {
public:
    FileBytes& u8(uint32_t value) { return number(value, 1); }
    FileBytes& u16(uint32_t value) { return number(value, 2); }
    FileBytes& u32(uint32_t value) { return number(value, 4); }
    FileBytes& fill(size_t count, uint8_t value) {
        bytes.insert(bytes.end(), count, value);
        return *this;
    }
    FileBytes& add(const std::vector<uint8_t>& more) {
        bytes.insert(bytes.end(), more.begin(), more.end());
        return *this;
    }
    uint32_t size() const { return static_cast<uint32_t>(bytes.size()); }

    std::vector<uint8_t> bytes;

private:
    FileBytes& number(uint32_t value, int width) {
        for (int at = 0; at < width; ++at)
            bytes.push_back(static_cast<uint8_t>(value >> 8 * at));
        return *this;
    }
};

struct BmpFile {
    int32_t width = 1;
    int32_t height = 1;
    uint16_t bits = 24;
    std::vector<uint32_t> palette = {}; // 0x00RRGGBB
    std::vector<uint8_t> rows = {};     // as they lie in the file
    uint32_t gap = 0;                   // bytes in front of the rows that belong to nothing

    std::vector<uint8_t> build() const {
        FileBytes file;
        const auto colours = static_cast<uint32_t>(palette.size());
        const uint32_t rowsAt = 54 + 4 * colours + gap;
        file.u16(0x4D42).u32(rowsAt + static_cast<uint32_t>(rows.size())).u32(0).u32(rowsAt);
        file.u32(40).u32(static_cast<uint32_t>(width)).u32(static_cast<uint32_t>(height));
        file.u16(1).u16(bits).u32(0).u32(0).u32(0).u32(0).u32(colours).u32(0);
        for (uint32_t colour : palette)
            file.u32(colour);
        file.fill(gap, 0xEE).add(rows);
        return file.bytes;
    }
};

// One picture of an icon file: all of one colour and nowhere transparent.
struct IconPicture {
    int32_t width = 16;
    int32_t height = 16;
    uint16_t bits = 32;  // 24 or 32
    uint32_t colour = 0; // 0xRRGGBB
    uint32_t coloursUsed = 0;
    uint16_t planes = 1;
    int listedWidth = -1; // what the directory says, where it differs from the truth
    int listedBits = -1;

    // The entry's data: header, colour rows, mask rows.
    std::vector<uint8_t> build() const {
        FileBytes data;
        data.u32(40).u32(static_cast<uint32_t>(width)).u32(static_cast<uint32_t>(height * 2));
        data.u16(planes).u16(bits).u32(0).u32(0).u32(0).u32(0).u32(coloursUsed).u32(0);
        for (int row = 0; row < height; ++row)
            addColourRow(data);
        data.fill(static_cast<size_t>((width + 31) / 32 * 4 * height), 0);
        return data.bytes;
    }

private:
    void addColourRow(FileBytes& data) const {
        const uint32_t start = data.size();
        for (int x = 0; x < width; ++x) {
            data.u8(colour).u8(colour >> 8).u8(colour >> 16);
            if (bits == 32)
                data.u8(0xFF);
        }
        while ((data.size() - start) % 4 != 0)
            data.u8(0);
    }
};

// `count` is the number of entries that the file claims, if not the true one.
inline std::vector<uint8_t> iconFile(const std::vector<IconPicture>& pictures, int count = -1) {
    FileBytes file;
    FileBytes data;
    const auto entries = static_cast<uint32_t>(pictures.size());
    file.u16(0).u16(1).u16(count < 0 ? entries : static_cast<uint32_t>(count));
    for (const IconPicture& picture : pictures) {
        const std::vector<uint8_t> built = picture.build();
        const int listedWidth = picture.listedWidth < 0 ? picture.width : picture.listedWidth;
        const int listedBits = picture.listedBits < 0 ? picture.bits : picture.listedBits;
        file.u8(static_cast<uint32_t>(listedWidth)).u8(static_cast<uint32_t>(picture.height));
        file.u8(0).u8(0).u16(picture.planes).u16(static_cast<uint32_t>(listedBits));
        file.u32(static_cast<uint32_t>(built.size())).u32(6 + 16 * entries + data.size());
        data.add(built);
    }
    return file.add(data.bytes).bytes;
}
