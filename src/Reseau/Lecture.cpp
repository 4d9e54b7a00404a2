// The net format is read line by line: a line is cut into words, its first word says what it declares.
// Nothing is guessed: what is not understood is an error with its line.
#include "Reseau/Lecture.h"

#include <algorithm>
#include <charconv>
#include <deque>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace Reseau {

namespace {

/// Names are kept as pieces of the text, which stays where it is.
class Lecteur {
public:
    explicit Lecteur(std::string source) : source_(std::move(source)) {}

    /// @param lignes whole ones
    void lire(std::string_view lignes);
    Net finir() { return std::move(net_); }

private:
    [[noreturn]] void erreur(const std::string& quoi) const {
        throw ErreurDeLecture(source_ + ":" + std::to_string(numero_) + ": " + quoi);
    }

    void lireLigne(std::string_view ligne);
    void decouper(std::string_view ligne);
    std::size_t finDuNom(std::string_view mot) const;
    Compte nombre(std::string_view chiffres, const char* quoi) const;
    std::uint32_t place(std::string_view nom);
    Poids arc(std::string_view mot);

    void lireNet();
    void lireTransition();
    void lirePlace();

    std::string source_;
    std::size_t numero_ = 0;
    Net net_;
    bool nomme_ = false;
    std::vector<std::string_view> mots_;  // of the line
    std::unordered_map<std::string_view, std::uint32_t> numeros_;
    std::unordered_set<std::string_view> transitions_;
    std::unordered_set<std::uint32_t> declarees_;
};

bool estBlanc(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f'; }

/// Words end at a blank outside braces. "(5)" may stand against the name before it or apart, so a "(" begins
/// a word.
void Lecteur::decouper(std::string_view ligne) {
    mots_.clear();
    std::size_t i = 0;
    while (i < ligne.size()) {
        if (estBlanc(ligne[i])) {
            ++i;
            continue;
        }
        if (ligne[i] == '#') break;
        const std::size_t debut = i;
        if (ligne[i] == '{') {
            i = ligne.find('}', i);
            if (i == std::string_view::npos) erreur("a name in braces does not end");
            ++i;
        }
        if (i < ligne.size() && ligne[i] == '(' && i == debut) {
            i = ligne.find(')', i);
            if (i == std::string_view::npos) erreur("\")\" expected");
            ++i;
        } else {
            while (i < ligne.size() && !estBlanc(ligne[i]) && ligne[i] != '(') ++i;
        }
        mots_.push_back(ligne.substr(debut, i - debut));
    }
}

/// The length of the name that `mot` begins with: up to a "*", or the closing brace.
std::size_t Lecteur::finDuNom(std::string_view mot) const {
    if (mot.starts_with('{')) return mot.find('}') + 1;
    const std::size_t fin = mot.find_first_of("*()");
    return fin == std::string_view::npos ? mot.size() : fin;
}

Compte Lecteur::nombre(std::string_view chiffres, const char* quoi) const {
    Compte n = 0;
    const char* fin = chiffres.data() + chiffres.size();
    const auto [arret, code] = std::from_chars(chiffres.data(), fin, n);
    if (chiffres.empty() || chiffres[0] == '-' || arret != fin || code == std::errc::invalid_argument)
        erreur(std::string(quoi) + " expected, not \"" + std::string(chiffres) + "\"");
    if (code == std::errc::result_out_of_range || n == OMEGA)
        erreur(std::string(quoi) + " does not fit in 64 bits, \"" + std::string(chiffres) + "\"");
    return n;
}

std::uint32_t Lecteur::place(std::string_view nom) {
    const auto [i, neuve] = numeros_.try_emplace(nom, static_cast<std::uint32_t>(net_.places.size()));
    if (neuve) {
        net_.places.emplace_back(nom);
        net_.initial.push_back(0);
    }
    return i->second;
}

Poids Lecteur::arc(std::string_view mot) {
    const std::size_t fin = finDuNom(mot);
    if (fin == 0) erreur("a place name expected, not \"" + std::string(mot) + "\"");
    Compte poids = 1;
    if (fin < mot.size()) {
        if (mot[fin] != '*') erreur("\"*\" or a blank expected after the place of \"" + std::string(mot) + "\"");
        poids = nombre(mot.substr(fin + 1), "a weight");
    }
    return {place(mot.substr(0, fin)), poids};
}

void Lecteur::lireNet() {
    if (nomme_) erreur("the net already has a name");
    if (mots_.size() > 2) erreur("one name expected after \"net\"");
    nomme_ = true;
    if (mots_.size() == 2) net_.nom = mots_[1];
}

void Lecteur::lireTransition() {
    if (mots_.size() < 2 || mots_[1] == "->" || finDuNom(mots_[1]) != mots_[1].size())
        erreur("a transition name expected after \"tr\"");
    if (!transitions_.insert(mots_[1]).second)
        erreur("the transition \"" + std::string(mots_[1]) + "\" is declared twice");
    Creux cotes[2];
    int cote = 0;
    for (std::size_t i = 2; i < mots_.size(); ++i) {
        if (mots_[i] != "->")
            cotes[cote].push_back(arc(mots_[i]));
        else if (++cote > 1)
            erreur("a second \"->\"");
    }
    if (cote == 0) erreur("\"->\" expected");
    try {
        net_.ajouter(std::string(mots_[1]), std::move(cotes[0]), std::move(cotes[1]));
    } catch (const Debordement&) {
        erreur("the weights of one place do not fit in 64 bits together");
    }
}

void Lecteur::lirePlace() {
    if (mots_.size() < 2 || mots_[1][0] == '(' || finDuNom(mots_[1]) != mots_[1].size())
        erreur("a place name expected after \"pl\"");
    const std::uint32_t p = place(mots_[1]);
    if (!declarees_.insert(p).second) erreur("the place \"" + std::string(mots_[1]) + "\" is declared twice");
    if (mots_.size() == 2) return;
    const std::string_view jetons = mots_[2];
    if (mots_.size() > 3 || !jetons.starts_with('(') || !jetons.ends_with(')'))
        erreur("\"(TOKENS)\" expected after the place");
    std::string_view dedans = jetons.substr(1, jetons.size() - 2);
    while (!dedans.empty() && estBlanc(dedans.front())) dedans.remove_prefix(1);
    while (!dedans.empty() && estBlanc(dedans.back())) dedans.remove_suffix(1);
    net_.initial[p] = nombre(dedans, "a token count");
}

void Lecteur::lireLigne(std::string_view ligne) {
    ++numero_;
    decouper(ligne);
    if (mots_.empty()) return;
    if (mots_[0] == "net")
        lireNet();
    else if (mots_[0] == "tr")
        lireTransition();
    else if (mots_[0] == "pl")
        lirePlace();
    else
        erreur("\"net\", \"tr\" or \"pl\" expected, not \"" + std::string(mots_[0]) + "\"");
}

void Lecteur::lire(std::string_view lignes) {
    while (!lignes.empty()) {
        const std::size_t fin = std::min(lignes.find('\n'), lignes.size());
        lireLigne(lignes.substr(0, fin));
        lignes.remove_prefix(std::min(fin + 1, lignes.size()));
    }
}

}  // namespace

Net lire(std::string_view texte, const std::string& source) {
    Lecteur lecteur(source);
    lecteur.lire(texte);
    return lecteur.finir();
}

Net lire(const std::function<std::string_view()>& suite, const std::string& source) {
    Lecteur lecteur(source);
    std::deque<std::string> lues;  // whole lines
    std::string commencee;         // the line that the piece before has begun
    for (std::string_view morceau = suite(); !morceau.empty(); morceau = suite()) {
        const std::size_t lignes = morceau.rfind('\n') + 1;
        if (lignes > 0) {
            lues.push_back(std::move(commencee.append(morceau, 0, lignes)));
            commencee.clear();
            lecteur.lire(lues.back());
        }
        commencee.append(morceau, lignes);
    }
    lecteur.lire(commencee);
    return lecteur.finir();
}

}  // namespace Reseau
