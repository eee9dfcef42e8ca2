#include <Korvo/Common/Serialization/Thrift/PermissiveMemoryBuffer.h>

#include <stdexcept>

namespace Korvo::Common::Serialization::Thrift {

void PermissiveMemoryBuffer::takeBuffer(unsigned char** buffer, unsigned int* size) {
    if (!owner_) {
        throw std::runtime_error("Cannot take pointer if not owned");
    }
    *buffer = rBase_;
    *size = static_cast<unsigned int>(wBase_ - rBase_);
    owner_ = false;
}

}  // namespace Korvo::Common::Serialization::Thrift
