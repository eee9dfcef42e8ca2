#pragma once

#include <thrift/transport/TBufferTransports.h>

namespace Korvo::Common::Serialization::Thrift {

/// Thrift's memory transport, plus the right to walk away with the written bytes.
///
/// A stock `TMemoryBuffer` lets a caller look at its bytes but frees them on destruction; this one
/// also hands them over (`takeBuffer`), so that an encoded payload is never copied between the
/// encoder and the transport that sends it. Everything else is `TMemoryBuffer`'s behaviour.
class PermissiveMemoryBuffer : public apache::thrift::transport::TMemoryBuffer {
public:
    using apache::thrift::transport::TMemoryBuffer::TMemoryBuffer;

    /// Hands the unread bytes (read base to write position) to the caller, who must `free` them,
    /// and gives up ownership. Throws `std::runtime_error` "Cannot take pointer if not owned" when
    /// the transport does not own its memory (observed bytes, or a second call).
    void takeBuffer(unsigned char** buffer, unsigned int* size);
};

}  // namespace Korvo::Common::Serialization::Thrift
