#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Common.h>

namespace Korvo::Plexis::Data::Generated {

// The generated record declares its ordering and leaves the definition to us. Sets and maps of
// identifiers are ordered by the identifier's text, so two records with the same text are one
// player, and the encoding of a set or map does not depend on insertion order.
bool Guid::operator<(const Guid& other) const {
    return value < other.value;
}

}  // namespace Korvo::Plexis::Data::Generated
