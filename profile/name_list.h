// Lists of names in attribute values: "main | high".
#pragma once

namespace vornak {

/**
 * The bits of all names in `text`, ORed; blanks count nowhere. A name that `lookup` does not
 * know is reported on standard error. A list of more than 1023 characters is cut at its last
 * whole name.
 * @param lookup  a function of the host's registry; 0 means that it knows the name
 * @param kind    what the report calls the name
 */
int parseNameList(const char *text, int (*lookup)(const char *name, int *bit), const char *kind);

} // namespace vornak
