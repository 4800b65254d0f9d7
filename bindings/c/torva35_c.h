#ifndef TORVA35_C_H
#define TORVA35_C_H

/**
 * @file
 * From the files of a printed multiple-choice test to a bubble sheet that grades right, for any language that can
 * call C. One handle takes the files, makes the sheet, and gives it as JSON, pages, tables and an LMF file.
 *
 *     torva35_exam* exam = torva35_exam_new();
 *     torva35_text json;
 *     if (torva35_exam_add_file(exam, "unit-3.xml", TORVA35_WHOLE, NULL, 0) != TORVA35_OK ||
 *         torva35_exam_make(exam, NULL, NULL) != TORVA35_OK || torva35_exam_json(exam, &json) != TORVA35_OK)
 *       torva35_exam_error(exam, &json);
 *     fwrite(json.data, 1, json.size, stdout);
 *     torva35_exam_free(exam);
 *
 * All texts are UTF-8 with a size in bytes; a size of TORVA35_WHOLE stands for a text that a NUL ends. A null text
 * is an empty one, where its size is 0 or TORVA35_WHOLE. What is given is copied. Texts that come back belong to
 * the handle, are ended by a NUL as well, and stay as they are until the same function is called again on this
 * handle, until the next torva35_exam_make, or until the handle is freed, whichever comes first.
 *
 * Each function that can fail returns a code, and the handle then has a sentence about it. A null handle and a
 * null where something is needed are TORVA35_WRONG_CALL, as is a call before its time; nothing changes then, and
 * what the call would have given is left as it was.
 *
 * A structure begins with its own size, which the caller sets. Later versions add members at the end: a library
 * gives those that the caller's size has room for, the others being zero if it does not know them itself, and
 * takes those that are missing for zero. A member that is not zero and that the library does not know is
 * TORVA35_WRONG_CALL, so that nothing that was asked for is passed over.
 *
 * A handle is used by one thread at a time, different handles by as many threads as there are. Nothing is shared
 * between them, and no call prints or ends the process. The first torva35_exam_make installs handlers for
 * processor faults in the process (SIGSEGV, SIGBUS, SIGFPE, SIGILL and SIGTRAP where there are signals); a fault
 * outside of the library still goes to the handlers that were there before.
 */

#include <stddef.h>
#include <stdint.h>

/** Exports the functions from the library, or imports them from it. */
#if defined(_WIN32)
#if defined(TORVA35_C_LIBRARY)
#define TORVA35_C_API __declspec(dllexport)
#else
#define TORVA35_C_API __declspec(dllimport)
#endif
#else
#define TORVA35_C_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** The files and options of one test, and the sheet that was made of them. */
typedef struct torva35_exam torva35_exam;

/** What became of a call. */
typedef enum torva35_code {
  TORVA35_OK = 0,
  TORVA35_WRONG_CALL = 1, /**< a null, a position that does not exist, or a call before its time */
  TORVA35_NO_MEMORY = 2,
  TORVA35_FILE = 3,      /**< a file could not be written */
  TORVA35_REFUSED = 4,   /**< a file is not a test that can be read; the findings say why */
  TORVA35_CANCELLED = 5, /**< by the answer to a dialog, or by a callback */
  TORVA35_FAILED = 6,    /**< the files do not go together; the findings say why */
  TORVA35_INTERNAL = 7   /**< a fault of the library's own */
} torva35_code;

/** A size that stands for "up to the NUL". */
#define TORVA35_WHOLE ((size_t)-1)

/** A text. */
typedef struct torva35_text {
  const char* data; /**< never null after a call that gave TORVA35_OK */
  size_t size;      /**< in bytes, without the NUL that ends it */
} torva35_text;

/** How much a finding matters. */
typedef enum torva35_severity {
  TORVA35_NOTE = 0,    /**< for the record: nothing to do */
  TORVA35_WARNING = 1, /**< something is not on the sheet or looks wrong; grades are right all the same */
  TORVA35_ERROR = 2    /**< with this, marks would be graded wrong, or there is no sheet */
} torva35_severity;

/** Something that the teacher should know. The caller sets struct_size to sizeof(torva35_finding). */
typedef struct torva35_finding {
  size_t struct_size; /**< sizeof(torva35_finding) */
  int32_t severity;   /**< a torva35_severity */
  int32_t file;       /**< position among the files, from 0; -1: about no single file */
  int64_t number;     /**< of the question on the paper, from 1; 0: about no single question */
  int64_t line;       /**< in the file, from 1; 0: not known */
  int64_t column;     /**< in the line, in characters from 1; 0: not known */
  torva35_text kind;  /**< a word that stays the same, such as "duplicate-id" */
  torva35_text id;    /**< of the question */
  torva35_text text;  /**< one sentence in English */
} torva35_finding;

/** A question to the user. */
typedef struct torva35_dialog {
  size_t struct_size;          /**< as the library knows it */
  torva35_text title;          /**< of its window */
  torva35_text text;           /**< lines end with CR LF */
  torva35_text file;           /**< the name of the file that it is about; empty for the test as a whole */
  const torva35_text* buttons; /**< captions; "&" stands before the letter that chooses the button */
  size_t button_count;         /**< how many captions there are */
} torva35_dialog;

/** How far the work is. */
typedef struct torva35_progress {
  size_t struct_size; /**< as the library knows it */
  torva35_text step;  /**< "reading", "checking", "merging" */
  torva35_text file;  /**< that is being read */
  int64_t done;       /**< of total */
  int64_t total;      /**< how many steps there are */
} torva35_progress;

/**
 * Called while a sheet is made, on the calling thread. A member that is null is not called. The texts are valid
 * during the call only. A callback may use other handles; on the one that calls it, every function that gives a
 * code gives TORVA35_WRONG_CALL, counts are 0, and torva35_exam_free does nothing. It returns: an exception or a
 * long jump must not leave it.
 */
typedef struct torva35_callbacks {
  size_t struct_size; /**< sizeof(torva35_callbacks) */
  void* user;         /**< handed to each callback */
  /** Answers with the position of a button, from 0; anything else cancels. Without it, the first button is chosen.
   */
  int (*ask)(void* user, const torva35_dialog* dialog);
  /** Anything but 0 cancels. */
  int (*progress)(void* user, const torva35_progress* progress);
  /** Each finding, in order, once the sheet is made or refused. */
  void (*report)(void* user, const torva35_finding* finding);
} torva35_callbacks;

/** How a sheet is made. All zero but struct_size is what most tests want. */
typedef struct torva35_options {
  size_t struct_size;                /**< sizeof(torva35_options) */
  torva35_text title;                /**< empty: that of the first file */
  const torva35_text* version_names; /**< one for each version; null: those of the files */
  size_t version_name_count;         /**< how many names there are */
  torva35_text state;                /**< two letters: the state whose objectives are read */
  int64_t max_questions;             /**< no more than the first ones; 0: all */
  int32_t objectives; /**< which are read, added up: 1 learning, 2 local, 4 state, 8 national; 0: none */
  int32_t odd_only;   /**< not 0: even-numbered questions have the letters of odd-numbered ones */
  int32_t renumber;   /**< not 0: rows have numbers without gaps, whatever the papers say */
  int32_t reserved;   /**< 0 */
} torva35_options;

/** How the pages look. All zero but struct_size is a sheet in English without a grid. */
typedef struct torva35_page {
  size_t struct_size;    /**< sizeof(torva35_page) */
  torva35_text language; /**< "en", "de", "fr" or "es"; any other is "en" */
  int32_t id_digits;     /**< digits of the student number's grid, 0 to 20 */
  int32_t name_letters;  /**< letters of the grid for the name, 0 to 30 */
  int32_t version;       /**< the version that is printed as marked, from 1; 0: students mark theirs */
  int32_t reserved;      /**< 0 */
  torva35_text title;    /**< of the pages; empty: that of the sheet */
} torva35_page;

/** The version of the library, such as "0.1.0". It stays for as long as the library is loaded. */
TORVA35_C_API const char* torva35_version(void);

/** A new handle without files; null when there is no memory for it. */
TORVA35_C_API torva35_exam* torva35_exam_new(void);
/** Frees a handle and every text that it gave. Null is fine. */
TORVA35_C_API void torva35_exam_free(torva35_exam* exam);

/**
 * Adds a file: the first one is the test, the others are its versions. It is read by torva35_exam_make.
 * name: for people, in findings and dialogs; empty: the path.
 */
TORVA35_C_API torva35_code torva35_exam_add_file(torva35_exam* exam, const char* path, size_t path_size,
                                                 const char* name, size_t name_size);
/** Adds the content of a file, with its size in bytes. name: for people; empty: "file 2" for the second one. */
TORVA35_C_API torva35_code torva35_exam_add_content(torva35_exam* exam, const void* content, size_t content_size,
                                                    const char* name, size_t name_size);

/**
 * Reads the files, checks that they go together, and makes the sheet. Null options are the usual ones, null
 * callbacks are none. TORVA35_OK means that there is a sheet; a finding may still be an error, and the sheet
 * should then not be used: torva35_exam_worst tells. After TORVA35_REFUSED and TORVA35_FAILED, and
 * TORVA35_CANCELLED by the button of a dialog, there are findings, the JSON and the teacher's page, but no sheet.
 * After anything else there is no result, and after TORVA35_WRONG_CALL the one from before. Adding files and
 * making again is fine.
 */
TORVA35_C_API torva35_code torva35_exam_make(torva35_exam* exam, const torva35_options* options,
                                             const torva35_callbacks* callbacks);

/** The sentence about the last call on this handle that failed; empty when none has. It stays as it is until
 * another one fails. A null handle has one, too. */
TORVA35_C_API torva35_code torva35_exam_error(const torva35_exam* exam, torva35_text* text);

/** How many findings there are; 0 before there is a result, and for a null handle. */
TORVA35_C_API size_t torva35_exam_finding_count(const torva35_exam* exam);
/** How many versions there are; 0 without a sheet, and for a null handle. */
TORVA35_C_API size_t torva35_exam_version_count(const torva35_exam* exam);
/** How many rows there are; likewise. */
TORVA35_C_API size_t torva35_exam_row_count(const torva35_exam* exam);
/** How many files for a sheet reader have been made; likewise. */
TORVA35_C_API size_t torva35_exam_reader_file_count(const torva35_exam* exam);

/** The torva35_severity of the worst finding; -1 when there is none, as for a null handle. With TORVA35_ERROR the
 * sheet and its keys should not be used. */
TORVA35_C_API int32_t torva35_exam_worst(const torva35_exam* exam);
/** A finding; position from 0. */
TORVA35_C_API torva35_code torva35_exam_finding_at(torva35_exam* exam, size_t position, torva35_finding* finding);
/** The title of the sheet. */
TORVA35_C_API torva35_code torva35_exam_title(torva35_exam* exam, torva35_text* text);
/** The name of a version, from 0; empty when there is only one, without a name. */
TORVA35_C_API torva35_code torva35_exam_version_name(torva35_exam* exam, size_t version, torva35_text* text);
/** The number that is printed beside a row, from 0. */
TORVA35_C_API torva35_code torva35_exam_row_number(torva35_exam* exam, size_t row, int64_t* number);
/**
 * What a perfect student of a version marks in a row, both from 0: "F"; several apart by a blank, "B D"; any one
 * of several apart by a stroke, "B|D"; empty: there is no key.
 */
TORVA35_C_API torva35_code torva35_exam_key(torva35_exam* exam, size_t version, size_t row, torva35_text* text);
/** The points for the right marks of a version in a row, both from 0. */
TORVA35_C_API torva35_code torva35_exam_points(torva35_exam* exam, size_t version, size_t row, double* points);

/** All of the result, as the file sheet.schema.json in the documentation describes it. */
TORVA35_C_API torva35_code torva35_exam_json(torva35_exam* exam, torva35_text* text);
/** The keys as comma-separated values, with a heading. */
TORVA35_C_API torva35_code torva35_exam_csv(torva35_exam* exam, torva35_text* text);
/** The sheet that students get, one HTML file that needs nothing else. A null page is the usual one. */
TORVA35_C_API torva35_code torva35_exam_student_page(torva35_exam* exam, const torva35_page* page,
                                                     torva35_text* text);
/** The teacher's page, with keys and findings; likewise. */
TORVA35_C_API torva35_code torva35_exam_teacher_page(torva35_exam* exam, const torva35_page* page,
                                                     torva35_text* text);
/** Puts the filled LMF model in the place of a file, whole or, with TORVA35_FILE, not at all. */
TORVA35_C_API torva35_code torva35_exam_save_lmf(torva35_exam* exam, const char* path, size_t path_size);
/** Makes the files for a sheet reader, which torva35_exam_reader_file then gives. A null page is the usual one. */
TORVA35_C_API torva35_code torva35_exam_make_reader_files(torva35_exam* exam, const torva35_page* page);
/** A file for a sheet reader, from 0: its path below a folder, with "/", and its content. Both stay until files
 * are made again. */
TORVA35_C_API torva35_code torva35_exam_reader_file(torva35_exam* exam, size_t position, torva35_text* path,
                                                    torva35_text* content);

#ifdef __cplusplus
}
#endif

#endif
