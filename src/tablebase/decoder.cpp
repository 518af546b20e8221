#include "tablebase/decoder.h"

#include "platform/fatal.h"

namespace tablebase {

// Compressed files aren't read yet: registering one is refused as unreadable.
TbDecoder* tbReadHeader(std::FILE* stream, const char* fileName) {
    (void)stream;
    platform::fatal("Unable to read %s - read error", fileName);
}
void tbFreeDecoder(TbDecoder* decoder) { (void)decoder; }
std::uint32_t tbDecodedSize(const TbDecoder& decoder) { return 0; }
void tbAllocateDecodeContext() {}
void tbFreeDecodeContext() {}
bool tbDecodeContextExists() { return false; }
int tbDecodeBlock(const TbDecoder& decoder, std::FILE* stream, int block, std::uint8_t* out) { return 0; }

}  // namespace tablebase
