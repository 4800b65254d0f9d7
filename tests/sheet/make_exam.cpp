// Writes a random test and versions of it, an ExamView file for each: make_exam SEED LONGEST VERSIONS FOLDER
// LONGEST: no section has as many questions. The same arguments give the same files.

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>

#include "tests/sheet/Exam.h"

int main(int argc, char** argv) {
  using namespace TORVA35::sheet;
  const auto number = [&](int at) { return at < argc ? std::atoi(argv[at]) : 0; };
  if (argc != 5 || number(2) < 1 || number(3) < 1 || number(3) > 26) {
    std::fprintf(stderr, "usage: make_exam SEED LONGEST VERSIONS FOLDER\n");
    return EXIT_FAILURE;
  }
  std::mt19937 random(static_cast<unsigned>(number(1)));
  const Exam exam = RandomExam(random, number(2));
  for (int version = 0; version < number(3); ++version) {
    const std::string name(1, static_cast<char>('A' + version));
    std::ofstream file(argv[4] + ("/" + name) + ".xml", std::ios::binary);
    file << (version == 0 ? exam : Shuffled(exam, name, random)).Xml();
    if (!file.flush()) {
      std::perror(argv[4]);
      return EXIT_FAILURE;
    }
  }
  return EXIT_SUCCESS;
}
