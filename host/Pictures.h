// A picture of the host: counted, encoded bytes in one or more representations. Nothing is decoded here.
#ifndef ZRHOST_PICTURES_H
#define ZRHOST_PICTURES_H

#include <atomic>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/Value.h"

namespace zrhost {

struct Representation {
    std::string type;  // "image/png"; JPEG is "image/jpg"
    std::vector<uint8_t> bytes;
};

class Picture {
  public:
    const std::vector<Representation>& representations() const { return representations_; }
    bool empty() const { return representations_.empty(); }
    size_t byteCount() const;  // of the first representation

  private:
    friend Ref<Picture> NewPicture(std::vector<Representation>);
    friend void Retain(Picture*);
    friend void Release(Picture*);
    std::atomic<long> references_{1};
    std::vector<Representation> representations_;  // never changed after the making
};

Ref<Picture> NewPicture(std::vector<Representation> representations);  // null reference if there is none
Ref<Picture> NewPicture(std::span<const uint8_t> encoded);             // typed by its bytes; null if empty
Picture* CheckedPicture(const void* address);                          // null = none lives there
long LivePictures();                                                   // for leak tests

struct PictureKind {
    const char* type;       // "image/png"
    const char* extension;  // ".png"
    const char* name;       // "PNG"
};
std::span<const PictureKind> PictureKinds();
const PictureKind* SniffPicture(std::span<const uint8_t> bytes);  // by the first bytes; null = unknown
const PictureKind* FindPictureKind(std::string_view typeOrExtension);
// Width and height in pixels (SVG: user units) as the header says; 0, 0 if it does not.
std::pair<int, int> PictureSize(std::span<const uint8_t> bytes);

}  // namespace zrhost

#endif
