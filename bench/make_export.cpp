// Writes a generated ExamView file.

#include <cstdio>
#include <cstdlib>

#include "bench/ExamViewExport.h"

int main(int argc, char** argv) {
  TORVA35::bench::ExportShape shape;
  shape.questions = argc == 3 || argc == 4 ? std::atoi(argv[1]) : 0;
  shape.rotation = argc == 4 ? std::atoi(argv[3]) : 0;
  if (shape.questions < 1 || shape.rotation < 0 || shape.rotation >= shape.questions) {
    std::fprintf(stderr, "usage: make_export QUESTIONS FILE [ROTATION]\n");
    return EXIT_FAILURE;
  }
  TORVA35::bench::WriteExport(argv[2], shape);
  return EXIT_SUCCESS;
}
