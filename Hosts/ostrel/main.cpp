#include "Program.h"

int main(int argc, char** argv)
{
  return Ostrel::RunProgram(argc, argv);
}
