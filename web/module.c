/* What the C interface asks in structures, asked in plain arguments, so that JavaScript need not know their layout. */

#include <emscripten.h>

#include "torva35_c.h"

EM_JS(int, torva35_web_ask, (const torva35_dialog* dialog, const torva35_text* buttons, size_t count), {
  return Module.ask(dialog, buttons, count);
});

static int Ask(void* user, const torva35_dialog* dialog) {
  (void)user;
  return torva35_web_ask(dialog, dialog->buttons, dialog->button_count);
}

/* Texts of a dialog: title, text, file. */
EMSCRIPTEN_KEEPALIVE const torva35_text* torva35_web_dialog_text(const torva35_dialog* dialog, int which) {
  return which == 0 ? &dialog->title : which == 1 ? &dialog->text : &dialog->file;
}

/* texts: the title, the state, then a name for each version. */
EMSCRIPTEN_KEEPALIVE torva35_code torva35_web_make(torva35_exam* exam, const torva35_text* texts, size_t names,
                                                   int max_questions, int objectives, int odd_only, int renumber) {
  torva35_options options = {sizeof options};
  options.title = texts[0];
  options.state = texts[1];
  options.version_names = names > 0 ? texts + 2 : NULL;
  options.version_name_count = names;
  options.max_questions = max_questions;
  options.objectives = objectives;
  options.odd_only = odd_only;
  options.renumber = renumber;
  torva35_callbacks callbacks = {sizeof callbacks};
  callbacks.ask = Ask;
  return torva35_exam_make(exam, &options, &callbacks);
}

/* kind: 0 the student's page, 1 the teacher's, 2 the reader's files. texts: the language, the title. */
EMSCRIPTEN_KEEPALIVE torva35_code torva35_web_page(torva35_exam* exam, int kind, const torva35_text* texts,
                                                   int id_digits, int name_letters, int version, torva35_text* text) {
  torva35_page page = {sizeof page};
  page.language = texts[0];
  page.title = texts[1];
  page.id_digits = id_digits;
  page.name_letters = name_letters;
  page.version = version;
  if (kind == 0) return torva35_exam_student_page(exam, &page, text);
  if (kind == 1) return torva35_exam_teacher_page(exam, &page, text);
  return torva35_exam_make_reader_files(exam, &page);
}
