# A Chip SDK header whose records have the same fields in another order, with fields between them that nobody knows.
# plain_c=1 leaves out the C++ guards too.
BEGIN { split("uint8 uint64 uint16 uint32", types) }
/^#ifdef __cplusplus/ && plain_c { skip = 3 }
skip > 0 { --skip; next }
# What the kernel module takes is bytes, not a record.
/^typedef struct / && !/kcom_msg_hdr_s/ { in_record = 1; count = 0; print; next }
in_record && /^}/ {
  for (i = count; i > 0; --i) print "  " types[i % 4 + 1] " added_" i ";\n" fields[i]
  print "  uint8 added_0[5];"
  in_record = 0
}
in_record { fields[++count] = $0; next }
{ print }
