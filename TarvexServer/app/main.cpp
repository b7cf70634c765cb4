#include "Commands.h"

int main(int argc, char **argv)
{
    return tarvex::app::runCommand(argc, argv);
}
