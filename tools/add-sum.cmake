# cmake -DFROM=FILE -DTO=FILE -P add-sum.cmake: FROM becomes TO, with its MD5 sum as 32 digits behind it.
file(MD5 "${FROM}" sum)
file(APPEND "${FROM}" "${sum}")
file(RENAME "${FROM}" "${TO}")
