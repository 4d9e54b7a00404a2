// The reader of .klv files: what the scanner (flex.l), the grammar (bison.y) and their caller share. One file is read
// at a time; the grammar's actions build model and drawing through the controller, declaration by declaration.
#pragma once

#include <cstdio>

class Controleur;

/// The line that the scanner is on, from 1; set by the caller before each parse.
extern int lineNumber;

/// Receives everything the grammar recognises; set by the caller before each parse, not owned.
extern Controleur* glob_controleur;

/// The stream being read; opened and closed by the caller.
extern std::FILE* yyin;

/// Makes `file` the scanner's input, from its beginning and whatever state the last file left.
void restartScanner(std::FILE* file);

/// @return the next token's code, 0 at the end of the input
int yylex();

/// Reads the whole input.
/// @return 0; an error does not return
int yyparse();

/// Writes the line number and `msg` to standard error and ends the program with status 255.
void yyerror(const char* msg);
