#pragma once

#include <Common/Platform/Pipe.h>

#include <cstdio>
#include <memory>
#include <vector>

namespace Tavrik::Platform
{

/** This process's ends of two pipes: from the tool's standard output, and to its standard input. */
struct PipeEnds
{
  Descriptor input;
  Descriptor output;
};

struct ToolStream
{
  std::FILE* file = nullptr;
  std::shared_ptr<PipeEnds> ends;
};

/** @return A stream for reading and writing; its file is null when memory is short. */
ToolStream OpenToolStream(const std::shared_ptr<PipeEnds>& ends);

/** Closes and removes the streams of tools that have closed their standard output. */
void CloseFinished(std::vector<ToolStream>* streams);

} // namespace Tavrik::Platform
