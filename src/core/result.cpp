#include "core/result.h"

#include "core/sdk.h"

namespace {

constexpr int lowest_code = -22;

/// Library codes by SDK code + 22. The gaps in the library's numbering are intended.
constexpr int32_t library_codes[1 - lowest_code] = {
    SAI_E_FAIL,       // -22
    SAI_E_FAIL,       // -21
    SAI_E_FAIL,       // -20
    SAI_E_FAIL,       // -19
    SAI_E_PORT,       // BCM_E_PORT
    SAI_E_FAIL,       // BCM_E_INIT
    SAI_E_UNAVAIL,    // BCM_E_UNAVAIL
    SAI_E_FAIL,       // BCM_E_CONFIG
    SAI_E_FAIL,       // BCM_E_RESOURCE
    SAI_E_FAIL,       // BCM_E_BADID
    SAI_E_FAIL,       // BCM_E_DISABLED
    SAI_E_FAIL,       // BCM_E_FAIL
    SAI_E_FAIL,       // BCM_E_BUSY
    SAI_E_FAIL,       // BCM_E_TIMEOUT
    SAI_E_EXISTS,     // BCM_E_EXISTS
    SAI_E_NOT_FOUND,  // BCM_E_NOT_FOUND
    SAI_E_FULL,       // BCM_E_FULL
    SAI_E_FAIL,       // BCM_E_EMPTY
    SAI_E_PARAM,      // BCM_E_PARAM
    SAI_E_FAIL,       // BCM_E_UNIT
    SAI_E_MEMORY,     // BCM_E_MEMORY
    SAI_E_FAIL,       // BCM_E_INTERNAL
    SAI_E_NONE,       // BCM_E_NONE
};

/// Criteria by hash selector; 0 where the selector numbering leaves a gap.
constexpr int32_t hash_criteria[20] = {
    BCM_TRUNK_PSC_SRCIP,    BCM_TRUNK_PSC_DSTIP,     0, 0, 0, 0, 0, 0, 0,
    BCM_TRUNK_PSC_SRCMAC,   BCM_TRUNK_PSC_DSTMAC,    0, 0, 0, 0, 0, 0, 0,
    BCM_TRUNK_PSC_SRCDSTIP, BCM_TRUNK_PSC_SRCDSTMAC,
};

constexpr bool is_known(int rv) { return lowest_code <= rv && rv <= BCM_E_NONE; }

}  // namespace

int sai::error_index(int rv) {
  constexpr int unknown_error = 1 - lowest_code;
  return is_known(rv) ? -rv : unknown_error;
}

const char* sai::error_text(int rv) { return _shr_errmsg[error_index(rv)]; }

int32_t sdk_to_sai(int32_t rv) { return is_known(rv) ? library_codes[rv - lowest_code] : SAI_E_FAIL; }

int32_t sai_hash_to_sdk(uint32_t selector) {
  return selector < sizeof hash_criteria / sizeof *hash_criteria ? hash_criteria[selector] : 0;
}
