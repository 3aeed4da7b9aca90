#include "SchedulerProgram.h"

int main(int argc, char** argv)
{
  return Ostrel::RunSchedulerProgram(argc, argv);
}
