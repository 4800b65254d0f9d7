/* The C interface as a C program meets it: c_test SAMPLE_A SAMPLE_B BROKEN FOLDER prints each check that fails;
 * c_test --json FILE... prints what is known about the files, and ends with the code. */

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "torva35_c.h"

static int failures = 0;

#define CHECK(condition) \
  ((condition) ? (void)0 : (void)(++failures, printf("%s:%d: %s\n", __FILE__, __LINE__, #condition)))

static int Is(torva35_text text, const char* expected) {
  return text.size == strlen(expected) && strcmp(text.data, expected) == 0;
}

static torva35_exam* ExamOf(const char* first, const char* second) {
  torva35_exam* exam = torva35_exam_new();
  CHECK(torva35_exam_add_file(exam, first, TORVA35_WHOLE, "first", 5) == TORVA35_OK);
  if (second != NULL) CHECK(torva35_exam_add_file(exam, second, strlen(second), NULL, 0) == TORVA35_OK);
  return exam;
}

/* A wrong call is an error, whatever the function, and never a crash. */
static void WrongCalls(const char* sample) {
  torva35_text text, other;
  int64_t number;
  double points;
  torva35_finding finding = {0};
  struct {
    torva35_options known;
    int64_t later;
  } newer = {{0}, 0};
  torva35_options options = {0};
  torva35_page page = {0};
  torva35_exam* exam = torva35_exam_new();
  torva35_exam* const handles[] = {NULL, exam};

  for (size_t i = 0; i < 2; ++i) {
    torva35_exam* each = handles[i];
    finding.struct_size = sizeof finding;
    CHECK(torva35_exam_add_file(each, NULL, 0, NULL, 0) == TORVA35_WRONG_CALL);
    CHECK(torva35_exam_add_file(each, NULL, 3, NULL, 0) == TORVA35_WRONG_CALL);
    CHECK(torva35_exam_add_content(each, NULL, 1, NULL, 0) == TORVA35_WRONG_CALL);
    CHECK(torva35_exam_make(each, NULL, NULL) == TORVA35_WRONG_CALL);
    CHECK(torva35_exam_finding_at(each, 0, &finding) == TORVA35_WRONG_CALL);
    CHECK(torva35_exam_version_name(each, 0, &text) == TORVA35_WRONG_CALL);
    CHECK(torva35_exam_row_number(each, 0, &number) == TORVA35_WRONG_CALL);
    CHECK(torva35_exam_key(each, 0, 0, &text) == TORVA35_WRONG_CALL);
    CHECK(torva35_exam_add_file(each, "a\0b", 3, NULL, 0) == TORVA35_WRONG_CALL);
    CHECK(torva35_exam_add_content(each, sample, TORVA35_WHOLE, NULL, 0) == TORVA35_WRONG_CALL);
    CHECK(torva35_exam_title(each, &text) == TORVA35_WRONG_CALL);
    CHECK(torva35_exam_points(each, 0, 0, &points) == TORVA35_WRONG_CALL);
    CHECK(torva35_exam_worst(each) == -1);
    CHECK(torva35_exam_json(each, &text) == TORVA35_WRONG_CALL);
    CHECK(torva35_exam_csv(each, &text) == TORVA35_WRONG_CALL);
    CHECK(torva35_exam_student_page(each, NULL, &text) == TORVA35_WRONG_CALL);
    CHECK(torva35_exam_teacher_page(each, NULL, &text) == TORVA35_WRONG_CALL);
    CHECK(torva35_exam_save_lmf(each, "x.lmf", TORVA35_WHOLE) == TORVA35_WRONG_CALL);
    CHECK(torva35_exam_make_reader_files(each, NULL) == TORVA35_WRONG_CALL);
    CHECK(torva35_exam_reader_file(each, 0, &text, &other) == TORVA35_WRONG_CALL);
    CHECK(torva35_exam_finding_count(each) + torva35_exam_version_count(each) + torva35_exam_row_count(each) +
              torva35_exam_reader_file_count(each) ==
          0);
    CHECK(torva35_exam_error(each, &text) == TORVA35_OK && text.size > 0);
    CHECK(torva35_exam_error(each, NULL) == TORVA35_WRONG_CALL);
  }

  CHECK(torva35_exam_add_file(exam, sample, TORVA35_WHOLE, NULL, 0) == TORVA35_OK);
  CHECK(torva35_exam_make(exam, &options, NULL) == TORVA35_WRONG_CALL); /* without its size */
  options.struct_size = sizeof options;
  options.version_name_count = 1;
  CHECK(torva35_exam_make(exam, &options, NULL) == TORVA35_WRONG_CALL);
  /* A caller of a later version, which must not get less than it asks for. */
  newer.known.struct_size = sizeof newer;
  newer.later = 1;
  CHECK(torva35_exam_make(exam, &newer.known, NULL) == TORVA35_WRONG_CALL);
  newer.later = 0;
  CHECK(torva35_exam_make(exam, &newer.known, NULL) == TORVA35_OK);
  newer.known.objectives = 16;
  CHECK(torva35_exam_make(exam, &newer.known, NULL) == TORVA35_WRONG_CALL);
  CHECK(torva35_exam_make(exam, NULL, NULL) == TORVA35_OK);
  CHECK(torva35_exam_json(exam, NULL) == TORVA35_WRONG_CALL);
  CHECK(torva35_exam_key(exam, 1, 0, &text) == TORVA35_WRONG_CALL);
  CHECK(torva35_exam_key(exam, 0, 1000, &text) == TORVA35_WRONG_CALL);
  page.struct_size = sizeof page;
  page.id_digits = 21;
  CHECK(torva35_exam_student_page(exam, &page, &text) == TORVA35_WRONG_CALL);
  page.id_digits = 0;
  page.version = 2;
  CHECK(torva35_exam_student_page(exam, &page, &text) == TORVA35_WRONG_CALL);
  finding.struct_size = 0;
  CHECK(torva35_exam_finding_at(exam, 0, &finding) == TORVA35_WRONG_CALL);
  torva35_exam_free(exam);
  torva35_exam_free(NULL);
}

static void Results(const char* first, const char* second, const char* folder) {
  torva35_text text, content, title;
  int64_t number;
  double points;
  char path[1000];
  torva35_exam* exam = ExamOf(first, second);
  CHECK(torva35_exam_make(exam, NULL, NULL) == TORVA35_OK);
  CHECK(torva35_exam_worst(exam) == TORVA35_WARNING);
  CHECK(torva35_exam_version_count(exam) == 2);
  CHECK(torva35_exam_version_name(exam, 1, &text) == TORVA35_OK && Is(text, "B"));
  CHECK(torva35_exam_row_number(exam, 3, &number) == TORVA35_OK && number == 4);
  CHECK(torva35_exam_key(exam, 0, 3, &text) == TORVA35_OK && Is(text, "H"));
  CHECK(torva35_exam_key(exam, 1, 3, &text) == TORVA35_OK && Is(text, "F"));
  CHECK(torva35_exam_points(exam, 0, 5, &points) == TORVA35_OK && points == 2.5);
  CHECK(torva35_exam_title(exam, &title) == TORVA35_OK && title.size > 0);
  CHECK(torva35_exam_csv(exam, &text) == TORVA35_OK && strncmp(text.data, "version,row,paper,id", 20) == 0);
  CHECK(torva35_exam_student_page(exam, NULL, &text) == TORVA35_OK && strstr(text.data, "<svg") != NULL);

  torva35_page page = {0};
  page.struct_size = sizeof page;
  page.language = (torva35_text){"de", 2};
  CHECK(torva35_exam_teacher_page(exam, &page, &text) == TORVA35_OK && strstr(text.data, "lang=\"de\"") != NULL);
  page.title = (torva35_text){"Unit 33", TORVA35_WHOLE};
  CHECK(torva35_exam_student_page(exam, &page, &text) == TORVA35_OK && strstr(text.data, "Unit 33") != NULL);
  CHECK(torva35_exam_title(exam, &text) == TORVA35_OK && text.data == title.data && !Is(text, "Unit 33"));
  CHECK(torva35_exam_make_reader_files(exam, &page) == TORVA35_OK);
  CHECK(torva35_exam_reader_file_count(exam) >= 6);
  CHECK(torva35_exam_reader_file(exam, 0, &text, &content) == TORVA35_OK && text.size > 0 && content.size > 0);

  snprintf(path, sizeof path, "%s/c_test.lmf", folder);
  CHECK(torva35_exam_save_lmf(exam, path, TORVA35_WHOLE) == TORVA35_OK);
  CHECK(torva35_exam_save_lmf(exam, "/no/such/folder/x.lmf", TORVA35_WHOLE) == TORVA35_FILE);
  CHECK(torva35_exam_error(exam, &text) == TORVA35_OK && strstr(text.data, "/no/such/folder") != NULL);

  /* The file that was saved is read as a content, with its versions. */
  FILE* const file = fopen(path, "rb");
  static char bytes[1 << 20];
  const size_t size = file == NULL ? 0 : fread(bytes, 1, sizeof bytes, file);
  if (file != NULL) fclose(file);
  torva35_exam* again = torva35_exam_new();
  CHECK(torva35_exam_add_content(again, bytes, size, "saved.lmf", TORVA35_WHOLE) == TORVA35_OK);
  CHECK(torva35_exam_make(again, NULL, NULL) == TORVA35_OK);
  CHECK(torva35_exam_key(again, 1, 3, &text) == TORVA35_OK && Is(text, "F"));
  torva35_exam_free(again);
  torva35_exam_free(exam);
  remove(path);
}

typedef struct Calls {
  int asked, shown, reported, answer, cancels;
  torva35_exam* exam;
} Calls;

/* A callback that uses the handle that calls it gets an error. */
static void CallBack(const Calls* calls) {
  torva35_text text;
  CHECK(torva35_exam_make(calls->exam, NULL, NULL) == TORVA35_WRONG_CALL);
  CHECK(torva35_exam_json(calls->exam, &text) == TORVA35_WRONG_CALL);
  CHECK(torva35_exam_finding_count(calls->exam) == 0);
  torva35_exam_free(calls->exam);
}

static int Ask(void* user, const torva35_dialog* dialog) {
  Calls* calls = user;
  ++calls->asked;
  CallBack(calls);
  CHECK(dialog->title.size > 0 && dialog->button_count >= 1 && dialog->buttons[0].size > 0);
  return calls->answer;
}
static int Show(void* user, const torva35_progress* progress) {
  Calls* calls = user;
  CHECK(progress->step.size > 0);
  return ++calls->shown >= calls->cancels;
}
static void Report(void* user, const torva35_finding* finding) {
  Calls* calls = user;
  ++calls->reported;
  CallBack(calls);
  CHECK(finding->text.size > 0 && finding->kind.size > 0);
}

static void Callbacks(const char* first, const char* second, const char* broken) {
  Calls calls = {0, 0, 0, 0, 1000, NULL};
  torva35_text text;
  torva35_finding finding = {0};
  torva35_callbacks callbacks = {sizeof callbacks, &calls, Ask, Show, Report};
  torva35_exam* exam = ExamOf(first, second);
  calls.exam = exam;
  CHECK(torva35_exam_make(exam, NULL, &callbacks) == TORVA35_OK);
  CHECK(calls.asked > 0 && calls.shown > 0);
  CHECK((size_t)calls.reported == torva35_exam_finding_count(exam) && calls.reported > 0);
  /* A caller from before the texts were added. */
  finding.struct_size = offsetof(torva35_finding, kind);
  CHECK(torva35_exam_finding_at(exam, 0, &finding) == TORVA35_OK && finding.kind.data == NULL);

  calls.answer = 7;
  CHECK(torva35_exam_make(exam, NULL, &callbacks) == TORVA35_CANCELLED);
  calls.answer = 0;
  calls.cancels = calls.shown + 2;
  CHECK(torva35_exam_make(exam, NULL, &callbacks) == TORVA35_CANCELLED);
  CHECK(torva35_exam_json(exam, &text) == TORVA35_WRONG_CALL);
  torva35_exam_free(exam);

  exam = ExamOf(broken, NULL);
  CHECK(torva35_exam_make(exam, NULL, NULL) == TORVA35_REFUSED);
  CHECK(torva35_exam_error(exam, &text) == TORVA35_OK && strncmp(text.data, "first: ", 7) == 0);
  CHECK(torva35_exam_finding_count(exam) == 1);
  CHECK(torva35_exam_json(exam, &text) == TORVA35_OK && text.data[0] == '{');
  CHECK(torva35_exam_csv(exam, &text) == TORVA35_WRONG_CALL);
  torva35_exam_free(exam);
}

static int PrintJson(int count, char** files) {
  torva35_text json;
  torva35_exam* exam = torva35_exam_new();
  for (int i = 0; i < count; ++i) torva35_exam_add_file(exam, files[i], TORVA35_WHOLE, NULL, 0);
  const torva35_code code = torva35_exam_make(exam, NULL, NULL);
  if (torva35_exam_json(exam, &json) == TORVA35_OK) fwrite(json.data, 1, json.size, stdout);
  torva35_exam_free(exam);
  return (int)code;
}

int main(int argc, char** argv) {
  if (argc > 1 && strcmp(argv[1], "--json") == 0) return PrintJson(argc - 2, argv + 2);
  if (argc != 5) return 2;
  WrongCalls(argv[1]);
  Results(argv[1], argv[2], argv[4]);
  Callbacks(argv[1], argv[2], argv[3]);
  printf("torva35_c %s: %d checks failed\n", torva35_version(), failures);
  return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
