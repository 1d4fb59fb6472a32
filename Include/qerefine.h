#ifndef QEREFINE_H
#define QEREFINE_H

/*
 * Models, questions and answers for programs in any language: the library `qerefine`.
 *
 * Texts are UTF-8 and end with a zero byte. Requests, options and answers are JSON: requests as
 * `qerefine batch` reads them, answers as `qerefine` writes them with `--format json`, byte by
 * byte. `options` may be NULL for none; a key that is not listed is an error.
 *
 * Calls that can fail return a status and, when it is not QE_OK, set `*error` to an error that the
 * caller frees. `error` may be NULL. Results are set when the status is QE_OK and NULL otherwise.
 * Nothing is thrown and nothing is printed. Graphviz's program `dot` is run for pictures; its end
 * is waited for, and the caller's signal handlers stay as they are.
 *
 * Models and answers never change once they are there: any number of threads may use one at a
 * time, without locks. One thread frees it when no other uses it any more. Errors and texts belong
 * to one thread at a time.
 *
 * User settings hold for the whole process, as do QEREFINER_SETTINGS and the settings file that it
 * names. Some are read once and kept: set them with the first model that is opened.
 */

#include <stddef.h>

#if defined(__GNUC__)
#define QE_API __attribute__((visibility("default")))
#else
#define QE_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** How a call ended. The numbers are fixed; later versions may add some. */
typedef enum qe_status
{
    QE_OK = 0,
    /** The call is wrong: a null pointer, options that cannot be read, or a word that stands for
     * nothing. */
    QE_WRONG_USE = 1,
    /** A model or another file cannot be read. */
    QE_UNREADABLE = 2,
    /** The request cannot be read. */
    QE_WRONG_REQUEST = 3,
    /** The model has no object of a name; the suggestions are those that may be meant. */
    QE_UNKNOWN_NAME = 4,
    /** The model has several objects of a name; the suggestions tell them apart. */
    QE_AMBIGUOUS_NAME = 5,
    /** The answer has no such form: SQL that the dialect cannot express, that of joined subjects
     * without their joins, or a picture that cannot be drawn. */
    QE_NO_SUCH_FORM = 6,
    /** The refiner refuses the question, such as for a governor. */
    QE_REFUSED = 7,
    QE_OUT_OF_MEMORY = 8,
    QE_INTERNAL_ERROR = 9
} qe_status;

/** What a question came to. */
typedef enum qe_outcome
{
    /** The subjects are connected. */
    QE_CONNECTED = 0,
    /** They cannot be; the answer's `groups` and `bridge` tell why. */
    QE_NOT_CONNECTED = 1,
    /** The refiner refused the question; the answer's `error` tells why. */
    QE_ANSWER_REFUSED = 2,
    /** The refiner failed; the answer's `error` is to be reported. */
    QE_ANSWER_FAILED = 3
} qe_outcome;

/** An open model. */
typedef struct qe_model qe_model;
/** The answer to one question. It keeps what it needs of the model. */
typedef struct qe_answer qe_answer;
/** Why a call failed: one or several mistakes. */
typedef struct qe_error qe_error;

/* ---- Versions ---- */

/** Returns the version of the library, such as "0.1.0". The text is never freed. */
QE_API const char* qe_version(void);

/** Returns a JSON Schema (draft 2020-12): that of "answer", which holds all that the calls here
 * return as JSON but for models and notes, or that of "model". NULL for other names. The text is
 * never freed. */
QE_API const char* qe_schema(const char* name);

/* ---- Errors and texts ---- */

/** Returns how the call ended; QE_OK for NULL. */
QE_API qe_status qe_error_status(const qe_error* error);
/** Returns one line for each mistake, such as "shop.json#/subjects/3/name: must not be empty";
 * "" for NULL. The text belongs to the error. */
QE_API const char* qe_error_text(const qe_error* error);
/** Returns the number of mistakes. */
QE_API size_t qe_error_count(const qe_error* error);
/** Returns where a mistake is, counted from 0: "shop.sql:12:7" for syntax,
 * "shop.json#/subjects/3/name" for content, a JSON pointer or the name of a list for a request,
 * "options#/dialect"; perhaps "". NULL when there is no such mistake. */
QE_API const char* qe_error_place(const qe_error* error, size_t mistake);
/** Returns what is wrong there, in one sentence; NULL when there is no such mistake. */
QE_API const char* qe_error_message(const qe_error* error, size_t mistake);
/** Returns the n-th right name that may be meant, best first, counted from 0; NULL behind the last
 * one. */
QE_API const char* qe_error_suggestion(const qe_error* error, size_t mistake, size_t n);
/** Frees an error; NULL does nothing. */
QE_API void qe_error_free(qe_error* error);
/** Frees a text that a call set; NULL does nothing. */
QE_API void qe_text_free(char* text);

/* ---- Models ---- */

/**
 * Opens whatever holds a model: a model file, an SQLite database, SQL statements, a file or folder
 * of another tool, or the URL of a database on a server.
 *
 * Options:
 *   "from"              the dialect or format of the file, one of those that `qerefine import`
 *                       takes; recognised without it
 *   "roles"             "plain" or "shortcuts": what several keys to one table become
 *   "schemas"           list of patterns: which schemas of a server are read
 *   "tables"            list of patterns: which tables of a server are read
 *   "statementTimeout"  seconds that a server may take for a statement, 60 unless given, 0: any
 *   "history"           list of files of past queries, beside those that the model names
 *   "settings"          user settings for the process: {"General Options/NewAlgo": 0}
 *
 * Takes time in proportion to the model.
 */
QE_API qe_status qe_model_open(const char* path, const char* options, qe_model** model,
                               qe_error** error);
/** Does so with the bytes of a file. `name` is how messages call it; a database gives the model its
 * name. The bytes are not needed afterwards. */
QE_API qe_status qe_model_read(const void* bytes, size_t size, const char* name,
                               const char* options, qe_model** model, qe_error** error);
/** Frees a model; NULL does nothing. Answers stay. */
QE_API void qe_model_free(qe_model* model);

/** Sets `*json` to the model as a model file: its subjects, items, keys, joins and conditions. */
QE_API qe_status qe_model_describe(const qe_model* model, char** json, qe_error** error);
/** Sets `*json` to a list of sentences: what reading the model and its history left out or had to
 * guess. */
QE_API qe_status qe_model_notes(const qe_model* model, char** json, qe_error** error);
/**
 * Sets `*json` to what a modeller should know about the model (`qerefine check`).
 *
 * Options:
 *   "severities"              {"code of a rule": "off", "note", "warning" or "error"}
 *   "baseline"                path of a file of accepted findings
 *   "limit"                   findings of each rule that are shown, 20 unless given, 0: all
 *   "accepted"                true: accepted findings are shown as well
 *   "pathJoins", "pathSteps"  how far ambiguous paths are looked for
 */
QE_API qe_status qe_model_check(const qe_model* model, const char* options, char** json,
                                qe_error** error);
/** Sets `*json` to the facts and dimensions: of the whole model, where `request` is NULL, or along
 * the path that answers it. QE_REFUSED where the refiner has no such answer. */
QE_API qe_status qe_model_facts(const qe_model* model, const char* request, char** json,
                                qe_error** error);
/** Sets `*json` to the shortcuts that count as one in the graph that the request restricts; the
 * request may be NULL, and needs no subjects. */
QE_API qe_status qe_model_shortcuts(const qe_model* model, const char* request, char** json,
                                    qe_error** error);
/**
 * Sets `*text` to a picture of the model.
 *
 * Options:
 *   "format"  "svg", or "dot" for the graph as Graphviz reads it
 *   "around"  list of subjects: only they and what is joined to them
 *   "limit"   subjects drawn at most, 100 unless given, 0: all
 */
QE_API qe_status qe_model_draw(const qe_model* model, const char* options, char** text,
                               qe_error** error);
/**
 * Answers requests, one a line, and sets `*lines` to a line of JSON for each, in their order. A
 * request that cannot be answered gets a line with its error, and the others go on.
 *
 * Options:
 *   "jobs"          threads that work on the requests, 1 to 256, 1 unless given
 *   "alternatives"  how many candidates each answer lists, none unless given, 0: all
 *   "defaults"      what requests do not say, as an object like them
 */
QE_API qe_status qe_model_batch(const qe_model* model, const char* requests, size_t size,
                                const char* options, char** lines, qe_error** error);
/**
 * Sets `*json` to how often the answers are the joins that people wrote: the requests, one a line,
 * hold them (`qerefine evaluate`).
 *
 * Options:
 *   "defaults"  what requests do not say, as an object like them
 *   "history"   list of files of past queries, in place of those that the model was opened with
 *   "round"     "leave-one-out" or "replay": which requests are the history of each; no other
 *               history is asked then
 */
QE_API qe_status qe_model_evaluate(const qe_model* model, const char* requests, size_t size,
                                   const char* options, char** json, qe_error** error);

/* ---- Questions ---- */

/** Asks one question. The answer is there whatever its outcome is. */
QE_API qe_status qe_ask(const qe_model* model, const char* request, qe_answer** answer,
                        qe_error** error);
/** Returns what the question came to; QE_ANSWER_FAILED for NULL. */
QE_API qe_outcome qe_answer_outcome(const qe_answer* answer);
/**
 * Sets `*text` to the answer in a form: "json", "text", "sql", "dot", "svg" or "html".
 *
 * Options:
 *   "alternatives"      how many candidates are listed, 10 unless given, 0: all
 *   "dialect"           that of SQL; unless given, that of the model
 *   "select"            true: SQL is a whole SELECT of the subjects' first items
 *   "inner"             true: SQL has inner joins only
 *   "skipPassedTables"  true: SQL leaves out tables that the path only passes
 *   "start"             the subject that SQL begins with, whose rows it keeps
 */
QE_API qe_status qe_answer_write(const qe_answer* answer, const char* format, const char* options,
                                 char** text, qe_error** error);
/** Frees an answer; NULL does nothing. */
QE_API void qe_answer_free(qe_answer* answer);

#ifdef __cplusplus
}
#endif

#endif
