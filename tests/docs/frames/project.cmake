cmake_minimum_required(VERSION 3.23)
project(MyProgram LANGUAGES CXX)
add_executable(my_program main.cpp)
@sample@
