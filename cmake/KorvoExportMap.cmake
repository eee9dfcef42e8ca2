# Writes the version script of the shared client library from its object files (cmake -P).
#   -D OBJECTS=<object files>  -D NM=<nm>  -D CXXFILT=<c++filt>  -D OUTPUT=<map file>
#
# A symbol is exported when it belongs to the Korvo namespaces (a function, a static member, or
# the type information, virtual table or thunk of a class) and not to one of the internal
# namespaces below; everything else is local: the layers' internals, the standard library's and
# Thrift's template instances, the objects' helpers. Listing names rather than writing wildcard
# patterns lets a pattern of the internal namespaces win over the public ones, which a linker's
# wildcard matching does not allow.

# Namespaces of src/ that no public header uses. Serialization::Detail is not among them: the
# decoding templates of the public headers call its functions from the application's code.
set(internal_namespaces
    "Korvo::Common::Messaging::Detail::"
    "Korvo::Plexis::Tessel::Client::Detail::"
    "Korvo::Plexis::Tessel::Client::Tables::"
    "Korvo::Plexis::Tessel::Json::Detail::"
    "Korvo::Plexis::Tessel::Serialization::Thrift::Mapping::")

# One nm over every object. Only names that mention the Korvo namespace are candidates (a mangled
# name holds it as "5Korvo"); this leaves out the bulk of a build without optimisation, the
# standard library's instances, before the slower checks below.
execute_process(
    COMMAND ${NM} --defined-only --extern-only --format=posix ${OBJECTS}
    OUTPUT_VARIABLE listing
    COMMAND_ERROR_IS_FATAL ANY)
# "<name> <type> <value> <size>" per symbol; undefined and local symbols are already left out.
string(REGEX MATCHALL "[^\n ]*5Korvo[^\n ]* [TDBRVWuGS]" mangled "${listing}")
list(TRANSFORM mangled REPLACE " .$" "")
list(REMOVE_DUPLICATES mangled)

string(REPLACE ";" "\n" names "${mangled}")
file(WRITE ${OUTPUT}.names "${names}\n")
execute_process(
    COMMAND ${CXXFILT}
    INPUT_FILE ${OUTPUT}.names
    OUTPUT_VARIABLE demangled
    COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" demangled "${demangled}")
list(LENGTH mangled count)
list(LENGTH demangled demangled_count)
if(NOT count EQUAL demangled_count)
    message(FATAL_ERROR "${CXXFILT} returned ${demangled_count} names for ${count}")
endif()

set(exported)
foreach(symbol name IN ZIP_LISTS mangled demangled)
    # Type information, tables and thunks name the class they belong to after a prefix.
    string(REGEX REPLACE "^(typeinfo name for|typeinfo for|vtable for|VTT for|construction vtable for|guard variable for|virtual thunk to|non-virtual thunk to|covariant return thunk to) " "" entity "${name}")
    # A function template's instance starts with its return type: "void Korvo::...<T>(...)".
    string(REGEX REPLACE "^[A-Za-z_][A-Za-z0-9_:]*[ *&]+(Korvo::)" "\\1" entity "${entity}")
    if(NOT entity MATCHES "^Korvo::")
        continue()
    endif()
    string(REGEX REPLACE "[(<].*" "" head "${entity}")
    set(internal FALSE)
    foreach(namespace IN LISTS internal_namespaces)
        string(FIND "${head}" "${namespace}" at)
        if(at EQUAL 0)
            set(internal TRUE)
        endif()
    endforeach()
    if(NOT internal)
        list(APPEND exported "${symbol}")
    endif()
endforeach()

list(SORT exported)
list(LENGTH exported exported_count)
string(REPLACE ";" ";\n    " exported "${exported}")
set(content "/* Generated from the library's objects: ${exported_count} symbols exported. */\n")
string(APPEND content "{\n  global:\n    ${exported};\n  local:\n    *;\n};\n")
# Rewritten only when it changes, so that an unchanged list does not look like a new input.
file(CONFIGURE OUTPUT ${OUTPUT} CONTENT "${content}" @ONLY)
file(REMOVE ${OUTPUT}.names)
