/* The grammar of .klv files. Every value that a rule makes with new is consumed by the rule that uses it. */
%code requires {
#include <string>
#include <utility>
}

%code {
#include <cstdlib>
#include <iostream>

#include "Controleur/Controleur.h"
#include "Lecture.h"
#include "Modele/Multiset.h"
#include "Modele/Noeud.h"
#include "Modele/Regle.h"
#include "Vue/Noeud.h"

using Modele::Multiset;
using Molecule = std::pair<std::string, int>;

Controleur* glob_controleur = nullptr;

namespace {

template <class T>
T take(void* made) {
    T* const owned = static_cast<T*>(made);
    T value = std::move(*owned);
    delete owned;
    return value;
}

void* newRegle(const Multiset& in, const Multiset& out) { return new Modele::Regle(&in, &out); }

}  // namespace
}

%union {
    char str[256];
    int integer;
    void* ptr;
}

%token <integer> INT 258
%token <str> NAME 259

%type <ptr> rule multiset element

%%

file: %empty
    | file declaration
    ;

declaration: arc ';'
    | position ';'
    | initial ';'
    ;

arc: NAME '>' NAME rule
        {
            Modele::Noeud* const source = glob_controleur->addNoeud(std::string($1))->getModele();
            Modele::Noeud* const destination = glob_controleur->addNoeud(std::string($3))->getModele();
            glob_controleur->addArc(source, destination, static_cast<Modele::Regle*>($4));
        }
    ;

rule: ':' multiset '>' multiset     { $$ = newRegle(take<Multiset>($2), take<Multiset>($4)); }
    | %empty                        { $$ = nullptr; }
    ;

multiset: %empty                    { $$ = new Multiset; }
    | multiset element
        {
            const Molecule molecule = take<Molecule>($2);
            (*static_cast<Multiset*>($1))[molecule.first] = molecule.second;
            $$ = $1;
        }
    ;

element: INT NAME                   { $$ = new Molecule($2, $1); }
    | NAME                          { $$ = new Molecule($1, 1); }
    ;

position: NAME '(' INT ',' INT ')'  { glob_controleur->addNoeud(std::string($1), $3, $5); }
    ;

initial: NAME ':' multiset
        {
            const Multiset marking = take<Multiset>($3);
            glob_controleur->addNoeudInit(std::string($1), &marking);
        }
    ;

%%

void yyerror(const char* msg) {
    std::cerr << "line " << lineNumber << ": " << msg << std::endl;
    std::exit(-1);
}
