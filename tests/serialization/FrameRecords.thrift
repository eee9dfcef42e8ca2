// Records used only by the serialization frame's tests.
namespace cpp Korvo.Testing.Generated

struct Item {
  1: string name,
  2: optional binary blob,
}

struct Needy {
  1: required string id,
  2: required i32 count,
}
