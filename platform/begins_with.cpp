#include "include/vornak_host.h"

#include <string_view>

void mystrcmp2(const char *text, const char *word, int *result)
{
    *result = std::string_view(text).starts_with(word) ? 1 : 0;
}
