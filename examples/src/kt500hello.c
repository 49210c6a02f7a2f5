#include <stdio.h>

int main(void) {
  puts("Hello from the terminal.");
  return 0;
}
