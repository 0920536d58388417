// Any bytes as a picture whose form is told by its content alone.
#include "imaging/MPixelBudget.h"
#include "imaging/codecs/MCodec.h"

#include <algorithm>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span bytes(data, size);
    const MCodec* const codec = CodecForContent(bytes.first(std::min(size, SniffLength)));
    if (!codec) return 0;
    SetMemoryLimit(std::size_t{1} << 30);
    RestorePixelBudget();
    const MPixelLimit limit(size);
    MByteSource source(bytes);
    MPicture picture;
    if (codec->decode(source, 0, picture) && !picture.IsValid()) __builtin_trap();
    picture.Free();
    TakePixelRefusal();
    return 0;
}
