#include "FwDeploy.h"

int main(int argc, char** argv) {
  return FwDeployMain(argc, argv);
}
