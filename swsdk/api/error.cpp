#include <shared/error.h>

namespace {

/// The interface returns non-const pointers; no caller writes through them.
constexpr char* literal(const char* text) noexcept { return const_cast<char*>(text); }

}  // namespace

// By negated code; the last one is for codes that are not in the list.
char* _shr_errmsg[] = {
    literal("Success"),                        // BCM_E_NONE
    literal("Internal error"),                 // BCM_E_INTERNAL
    literal("Out of memory"),                  // BCM_E_MEMORY
    literal("No such unit"),                   // BCM_E_UNIT
    literal("Invalid parameter"),              // BCM_E_PARAM
    literal("Table is empty"),                 // BCM_E_EMPTY
    literal("Table is full"),                  // BCM_E_FULL
    literal("Entry not found"),                // BCM_E_NOT_FOUND
    literal("Entry already exists"),           // BCM_E_EXISTS
    literal("Operation took too long"),        // BCM_E_TIMEOUT
    literal("Hardware is busy"),               // BCM_E_BUSY
    literal("Hardware reported a failure"),    // BCM_E_FAIL
    literal("Operation is switched off"),      // BCM_E_DISABLED
    literal("Invalid identifier"),             // BCM_E_BADID
    literal("Out of resources"),               // BCM_E_RESOURCE
    literal("Configuration does not fit"),     // BCM_E_CONFIG
    literal("Not available on this chip"),     // BCM_E_UNAVAIL
    literal("Module is not initialized"),      // BCM_E_INIT
    literal("Invalid port"),                   // BCM_E_PORT
    literal("Input or output failed"),         // -19
    literal("Access refused"),                 // -20
    literal("Nobody handles this operation"),  // -21
    literal("Operation done in part"),         // -22
    literal("Unknown error"),
};
