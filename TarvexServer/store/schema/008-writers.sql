-- What each process that writes has committed last, so that it can learn what became of a commit whose answer
-- was lost. Kept where the database is another machine's.
CREATE TABLE writer_mark (writer TEXT NOT NULL PRIMARY KEY, mark BIGINT NOT NULL, noted_at TIMESTAMP WITH TIME ZONE NOT NULL);
