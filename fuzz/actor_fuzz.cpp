// Any bytes as an actor definition: true or false without a fault.
#include <cstdint>
#include <cstring>

#include "gamedata/actor_definition.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  CByteBuffer bytes;
  if (!bytes.SetSize(static_cast<u32>(size))) return 0;
  if (size) std::memcpy(bytes.Data(), data, size);
  ActorDefinition actor;
  (void)Read(actor, bytes);
  return 0;
}
