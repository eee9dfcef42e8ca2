# Run as a script (cmake -P) on one generated <name>_types.tcc, after thrift has written it:
# routes the generated readers' allocations through <Korvo/Common/Serialization/Thrift/RecordReading.h>.
#
# - `this->x.resize(n)` of a list becomes `Resize(*iprot, this->x, n)`, and the insertion into a
#   set `Insert(*iprot, this->x, e)`: a protocol that keeps a decode budget is charged the
#   elements' in-memory size before they are allocated.
# - `T& v = this->x[k]` of a map becomes `FreshEntry(*iprot, this->x, k)`: the entry is charged and
#   starts from a default value, so that a key read twice keeps the value read last instead of
#   a merge of both.
#
# Usage: cmake -DFILE=<path> -P KorvoRecordReading.cmake
if(NOT DEFINED FILE)
    message(FATAL_ERROR "FILE is not set")
endif()
file(READ ${FILE} text)
set(ns "::Korvo::Common::Serialization::Thrift::Reading")
string(REGEX REPLACE "this->([A-Za-z0-9_]+)\\.resize\\((_size[0-9]+)\\);"
       "${ns}::Resize(*iprot, this->\\1, \\2);" text "${text}")
string(REGEX REPLACE "this->([A-Za-z0-9_]+)\\.insert\\((_elem[0-9]+)\\);"
       "${ns}::Insert(*iprot, this->\\1, \\2);" text "${text}")
string(REGEX REPLACE "= this->([A-Za-z0-9_]+)\\[(_key[0-9]+)\\];"
       "= ${ns}::FreshEntry(*iprot, this->\\1, \\2);" text "${text}")
# Every container read must have been routed: a reader left out would escape the budget.
if(text MATCHES "\\.resize\\(_size|\\.insert\\(_elem|\\[_key[0-9]+\\]")
    message(FATAL_ERROR "${FILE}: a container read of an unknown form was left unrouted")
endif()
file(WRITE ${FILE} "#include <Korvo/Common/Serialization/Thrift/RecordReading.h>\n${text}")
