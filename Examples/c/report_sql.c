/* Asks which joins connect the subjects of a report, and prints the SQL that joins them.
 *
 *     report_sql MODEL REQUEST [DIALECT]
 *     report_sql shop.sqlite '{"subjects": ["orders", "region"]}' duckdb
 */

#include <qerefine.h>

#include <stdio.h>
#include <stdlib.h>

/* Tells why a call failed and what may have been meant. Returns the exit code. */
static int fail(qe_error* error)
{
    size_t i;
    for (i = 0; i < qe_error_count(error); ++i) {
        size_t n;
        const char* name;
        fprintf(stderr, "%s: %s\n", qe_error_place(error, i), qe_error_message(error, i));
        for (n = 0; (name = qe_error_suggestion(error, i, n)) != NULL; ++n)
            fprintf(stderr, "  perhaps: %s\n", name);
    }
    if (qe_error_count(error) == 0)
        fprintf(stderr, "%s\n", qe_error_text(error));
    qe_error_free(error);
    return EXIT_FAILURE;
}

/* Prints the answer's SQL; what it risks stands above it, as comments. */
static int print_sql(const qe_answer* answer, const char* dialect)
{
    char options[64] = "{\"select\": true}";
    char* sql = NULL;
    qe_error* error = NULL;
    if (qe_answer_outcome(answer) == QE_NOT_CONNECTED) {
        fprintf(stderr, "the subjects cannot be connected\n");
        return EXIT_FAILURE;
    }
    if (dialect != NULL)
        snprintf(options, sizeof options, "{\"select\": true, \"dialect\": \"%.20s\"}", dialect);
    if (qe_answer_write(answer, "sql", options, &sql, &error) != QE_OK)
        return fail(error);
    fputs(sql, stdout);
    qe_text_free(sql);
    return EXIT_SUCCESS;
}

int main(int argc, char** argv)
{
    qe_model* model = NULL;
    qe_answer* answer = NULL;
    qe_error* error = NULL;
    int result;
    if (argc < 3) {
        fprintf(stderr, "usage: report_sql MODEL REQUEST [DIALECT]\n");
        return EXIT_FAILURE;
    }
    if (qe_model_open(argv[1], NULL, &model, &error) != QE_OK)
        return fail(error);
    if (qe_ask(model, argv[2], &answer, &error) != QE_OK)
        result = fail(error);
    else
        result = print_sql(answer, argc > 3 ? argv[3] : NULL);
    qe_answer_free(answer);
    qe_model_free(model);
    return result;
}
