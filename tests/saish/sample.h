/**
 * Records and functions of every shape that the shell reads from a header like sai.h.
 */
#include <sai.h>

enum sample_number {
  SAI_SAMPLE_NUMBER = 1,
};

typedef struct sample_inner {
  uint16_t vid; /**< VLAN id; 0: none */
  int8_t tos;
} sample_inner;

/** What a comment says of a record, {braces} and a; semicolon in it, is not the record. */
typedef struct sample_entry {
  uint32_t flags;    /**< on input: bits; on output:
                      *   the kind of entry */
  uint8_t mac[6];    /**< MAC address */
  int32_t port;      /* as the chip counts */
  uint64_t octets;   /**< octets counted */
  uint32_t ip;       /**< IPv4 address */
  uint32_t net_mask; /**< IPv4 mask, network
                      *   byte order */
  uint32_t ip_type;  /**< 2: IPv4, 3: IPv6 */
  uint8_t ip6[16];   /**< IPv6 address */
  /** Told before the field. */
  uint8_t reserved[8];
  int32_t weights[3]; /**< a weight of each queue; [0] is the first */
  sample_inner inner; /**< a record in the record */
} sample_entry;

/** A record with a pointer is none that a person can write. */
typedef struct sample_list {
  uint32_t count;
  sample_inner* items;
} sample_list;

/**
 * Takes a record by a pointer to const.
 *
 * @return what `port` is in it, or the converted
 *         result of nothing
 */
SAI_API int32_t sample_take(int32_t unit, const sample_entry* entry);

/**
 * Takes a record by value.
 *
 * @return always 0
 */
SAI_API int32_t sample_take_value(sample_inner inner);

/** Takes a record and changes it: the port becomes twice what it was. */
SAI_API int32_t sample_change(int32_t unit, sample_entry* entry);

/** Fails, with a record that was changed before. */
SAI_API int32_t sample_fail(sample_inner* inner);

/**
 * Finds something.
 *
 * @return where, or -1
 */
SAI_API int32_t sample_find(void);

/** Answers nothing. */
SAI_API void sample_forget(void);

/** Answers three numbers. */
SAI_API int32_t sample_numbers(uint16_t numbers[3]);

/** Answers a text. */
SAI_API int32_t sample_text(int32_t unit, char* name_buf, int32_t name_len);

/** Fills a table. */
SAI_API int32_t sample_table(sample_inner* entries);

/**
 * Answers the sum of the last bytes of two IPv6 addresses and an IPv4 one.
 *
 * @param group   an address, 16 bytes
 * @param source  another
 */
SAI_API int32_t sample_addresses(const uint8_t* group, const uint8_t source[16], uint32_t ip);

/**
 * Takes an id and answers the next one.
 *
 * @param id    takes an id and receives the one after it
 * @param last  receives the id
 */
SAI_API int32_t sample_next(int32_t* id, int32_t* last);

/**
 * Keeps two addresses and a mask as they come.
 *
 * @param source  an address in network order; 0: any
 * @param mask    its mask in host order
 * @param subnet  an address in network byte order
 */
SAI_API int32_t sample_orders(uint32_t source, uint32_t mask, uint32_t subnet);
