// The banner picture and the tracker module that the program carries. They lie back to back in its
// read-only data; nothing is unpacked or copied first.
#pragma once

extern "C" {
extern const unsigned char BannerData[];    // a whole BMP file
extern const unsigned char ModuleData[];    // a whole XM file, from the byte behind the banner on
extern const unsigned char ModuleDataEnd[]; // the byte behind its last
}
