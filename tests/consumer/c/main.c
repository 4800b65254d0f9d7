/* A host of the installed C interface: c_consumer FILE... prints the key of each version. */

#include <stdio.h>
#include <torva35_c.h>

int main(int argc, char** argv) {
  torva35_exam* exam = torva35_exam_new();
  torva35_text text = {"no memory", 9};
  torva35_code code = TORVA35_OK;
  for (int i = 1; i < argc && code == TORVA35_OK; ++i) {
    code = torva35_exam_add_file(exam, argv[i], TORVA35_WHOLE, NULL, 0);
  }
  if (code == TORVA35_OK) code = torva35_exam_make(exam, NULL, NULL);
  if (code != TORVA35_OK) {
    torva35_exam_error(exam, &text);
    fprintf(stderr, "%s\n", text.data);
  }
  for (size_t version = 0; version < torva35_exam_version_count(exam); ++version) {
    torva35_exam_version_name(exam, version, &text);
    printf("%s:", text.data);
    for (size_t row = 0; row < torva35_exam_row_count(exam); ++row) {
      torva35_exam_key(exam, version, row, &text);
      printf(" %s", text.data);
    }
    puts("");
  }
  torva35_exam_free(exam);
  return (int)code;
}
