// The stored form of a body: the envelope around the bytes of the modeller.
#pragma once

#include <span>
#include <string_view>

#include "platform/base/array.h"
#include "platform/base/status.h"
#include "platform/base/types.h"
#include "platform/modeler/body_attributes.h"

/// Modellers that wrote geometry bytes. Numbers are stored and never reused.
enum class OdModelerEngine : OdUInt16 { kOpenCascade = 1 };

/// A stored body taken apart. `geometry` is borrowed from the bytes that were read.
struct OdModelerEnvelope {
  OdModelerEngine engine = OdModelerEngine::kOpenCascade;
  OdModelerBodyAttributes attributes;
  std::string_view geometry;
};

/// Replaces `bytes`.
void odWriteEnvelope(const OdModelerEnvelope& envelope, OdBinaryData& bytes);

/// eCorruptData when the bytes are no body, are cut short or were changed; eUnsupportedVersion for
/// a newer form. Every count is compared with the number of bytes left before memory is allocated.
OdStatus odReadEnvelope(std::span<const OdUInt8> bytes, OdModelerEnvelope& envelope);
